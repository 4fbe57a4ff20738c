#include "Foundation/HomeDirectory.h"

#include <QDir>
#include <QFile>

#include <array>
#include <pwd.h>
#include <unistd.h>

namespace vesk {

namespace {

QString accountHome()
{
    std::array<char, 16384> buffer = {};
    passwd entry = {};
    passwd *found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr
        || found->pw_dir == nullptr) {
        return {};
    }
    return QFile::decodeName(found->pw_dir);
}

} // namespace

QString homeDirectory()
{
    // The account's entry is asked for only when it is needed: looking it up may talk to a name service.
    QString home = qEnvironmentVariable("HOME");
    if (!QDir::isAbsolutePath(home)) {
        home = accountHome();
    }
    return QDir::isAbsolutePath(home) ? QDir::cleanPath(home) : QStringLiteral("/");
}

} // namespace vesk
