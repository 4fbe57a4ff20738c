#include "Server/AccountFile.h"

#include "Foundation/Config.h"
#include "Foundation/Files.h"
#include "Foundation/Json.h"

#include <QFile>

#include <algorithm>
#include <filesystem>

namespace vesk {

using namespace Qt::StringLiterals;

const QString &AccountFile::path()
{
    static const QString path = Config::directory() + u"/account.json";
    return path;
}

bool AccountFile::isToken(QStringView text)
{
    const auto isVisible = [](QChar character) { return character > u' ' && character <= u'~'; };
    return !text.isEmpty() && std::ranges::all_of(text, isVisible);
}

std::optional<AccountFile> AccountFile::read()
{
    try {
        const JsonReader reader(Json::object(Files::read(path())));
        AccountFile file{reader.string("token"_L1), reader.string("email"_L1)};
        return isToken(file.token) ? std::optional(file) : std::nullopt;
    } catch (const UserError &) { // missing or damaged: the person signs in again
        return std::nullopt;
    }
}

void AccountFile::write() const
{
    const QJsonObject object = {{u"token"_s, token}, {u"email"_s, email}};
    Files::makeFolder(Config::directory());
    Files::replace(path(), Json::compact(object));
}

void AccountFile::remove()
{
    std::error_code error;
    std::filesystem::remove(QFile::encodeName(path()).toStdString(), error);
    if (error) {
        throw FileError(FileError::Operation::write, path(), error.value());
    }
}

} // namespace vesk
