#include "Support/TemporaryHome.h"

#include "Foundation/Log.h"

#include <QFile>
#include <QProcess>

#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>
#include <utility>

namespace vesk {

namespace {

unsigned long setFileSizeLimit(unsigned long bytes)
{
    rlimit limit = {};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    const auto before = std::exchange(limit.rlim_cur, bytes);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    return before;
}

} // namespace

FullDisk::FullDisk(unsigned long bytes)
    : m_before(setFileSizeLimit(bytes))
{
    std::signal(SIGXFSZ, SIG_IGN); // else the signal ends the program
}

FullDisk::~FullDisk() { setFileSizeLimit(m_before); }

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

void runTool(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    ASSERT_TRUE(process.waitForFinished(60'000)) << program.toStdString() << " is missing or hangs";
    ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
}

QByteArray logText()
{
    Log::flush();
    QFile file(Log::file());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace vesk
