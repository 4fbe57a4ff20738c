#include "Foundation/UserError.h"

namespace vesk {

const char *UserError::what() const noexcept
{
    try {
        m_what = errorDescription().toUtf8();
        return m_what.constData();
    } catch (...) { // out of memory while describing an error: the type's name is all that can be said
        return "vesk::UserError";
    }
}

QString describe(const std::exception &error)
{
    if (const auto *ours = dynamic_cast<const UserError *>(&error)) {
        return ours->errorDescription();
    }
    return QString::fromUtf8(error.what());
}

QString describe(std::exception_ptr error)
{
    try {
        std::rethrow_exception(std::move(error));
    } catch (const std::exception &caught) {
        return describe(caught);
    } catch (...) {
        return QStringLiteral("An unknown error occurred");
    }
}

} // namespace vesk
