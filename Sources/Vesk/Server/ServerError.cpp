#include "Server/ServerError.h"

namespace vesk {

ServerError::ServerError(Case errorCase, QString message, std::optional<QString> raw)
    : m_case(errorCase)
    , m_message(std::move(message))
    , m_raw(std::move(raw))
{
}

ServerError ServerError::signedOut(QString message) { return {Case::signedOut, std::move(message)}; }

ServerError ServerError::upstream(QString message, std::optional<QString> raw)
{
    return {Case::upstream, std::move(message), std::move(raw)};
}

ServerError ServerError::expired(QString message) { return {Case::expired, std::move(message)}; }

ServerError ServerError::other(QString message) { return {Case::other, std::move(message)}; }

ServerError ServerError::offline()
{
    return {Case::offline, QStringLiteral("Vesk could not reach its server. Check the internet connection.")};
}

} // namespace vesk
