#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>

#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>

namespace vesk {

QString testHome() { return qEnvironmentVariable("HOME"); }

void emptyTestHome()
{
    for (const auto &entry : std::filesystem::directory_iterator(testHome().toStdString())) {
        std::filesystem::remove_all(entry);
    }
}

int modeOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0
        ? static_cast<int>(status.st_mode & 07777)
        : -1;
}

} // namespace vesk
