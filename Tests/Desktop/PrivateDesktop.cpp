#include "Desktop/PrivateDesktop.h"

#include "Desktop/Screen.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>

namespace vesk::test {

namespace {

PrivateDesktop *theDesktop = nullptr;

/// Xvfb writes the number of the display that it took, and a line feed, when it accepts clients.
QByteArray readDisplayNumber(int descriptor)
{
    QByteArray number;
    pollfd ready = {descriptor, POLLIN, 0};
    char byte = 0;
    while (poll(&ready, 1, 20'000) > 0 && read(descriptor, &byte, 1) == 1) {
        if (byte == '\n') {
            return number;
        }
        number.append(byte);
    }
    throw std::runtime_error("Xvfb gave no display");
}

} // namespace

PrivateDesktop::PrivateDesktop(const Options &options)
{
    if (!m_folder.isValid()) {
        throw std::runtime_error("no folder for the private desktop");
    }
    setEnvironment();
    startDisplay(options.screen);
    startSessionBus();
    startAccessibilityBus(options.isAccessible);
    startWindowManager();
    theDesktop = this;
}

PrivateDesktop::~PrivateDesktop()
{
    theDesktop = nullptr;
    m_accessibilityBus.reset();
    while (!m_services.empty()) {
        m_services.pop_back();
    }
}

PrivateDesktop &PrivateDesktop::current()
{
    if (theDesktop == nullptr) {
        throw std::runtime_error("no private desktop runs");
    }
    return *theDesktop;
}

void PrivateDesktop::setEnvironment()
{
    for (const char *folder : {"run", "home", "config", "data", "cache", "tmp", "logs"}) {
        QDir().mkpath(m_folder.filePath(QLatin1String(folder)));
    }
    QFile::setPermissions(folder(QStringLiteral("run")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const auto set = [this](const char *variable, const char *folder) {
        qputenv(variable, QFile::encodeName(m_folder.filePath(QLatin1String(folder))));
    };
    set("XDG_RUNTIME_DIR", "run");
    set("XDG_CONFIG_HOME", "config");
    set("XDG_DATA_HOME", "data");
    set("XDG_CACHE_HOME", "cache");
    set("TMPDIR", "tmp");
    set("VESK_TEST_LOGS", "logs");
    set("HOME", "home");
    for (const char *variable : {"WAYLAND_DISPLAY", "GTK_MODULES", "AT_SPI_BUS_ADDRESS", "SESSION_MANAGER",
                                 "PULSE_SERVER", "PULSE_RUNTIME_PATH", "DBUS_STARTER_ADDRESS"}) {
        qunsetenv(variable);
    }
    qputenv("XDG_SESSION_TYPE", "x11");
    qputenv("XDG_CURRENT_DESKTOP", "XFCE");
    qputenv("LANG", "C.UTF-8");
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("GSETTINGS_BACKEND", "keyfile"); // settings live in this desktop's own folder
    qputenv("GTK_USE_PORTAL", "0");
    qputenv("GDK_BACKEND", "x11");
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_QPA_PLATFORMTHEME", ""); // the GTK theme makes a Qt program register twice on the bus
}

void PrivateDesktop::startDisplay(const QString &screen)
{
    int ends[2] = {};
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe for Xvfb");
    }
    const int writing = ends[1];
    m_services.push_back(std::make_unique<Process>(
        QStringLiteral("Xvfb"),
        Process::Options{{QStringLiteral("-displayfd"), QString::number(writing), QStringLiteral("-screen"),
                          QStringLiteral("0"), screen, QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                          QStringLiteral("-noreset"), QStringLiteral("-ac")},
                         QProcess::SeparateChannels,
                         [writing] { fcntl(writing, F_SETFD, 0); },
                         {}}));
    close(writing);
    const QByteArray number = readDisplayNumber(ends[0]);
    close(ends[0]);
    qputenv("DISPLAY", ':' + number);
}

void PrivateDesktop::startSessionBus()
{
    auto bus =
        std::make_unique<Process>(QStringLiteral("dbus-daemon"),
                                  Process::Options{{QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                    QStringLiteral("--print-address=1")},
                                                   QProcess::SeparateChannels,
                                                   {},
                                                   {}});
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus->readLine());
    m_services.push_back(std::move(bus));
}

void PrivateDesktop::startAccessibilityBus(bool isAccessible)
{
    m_accessibilityBus =
        std::make_unique<Process>(QStringLiteral("/usr/libexec/at-spi-bus-launcher"),
                                  Process::Options{{QStringLiteral("--launch-immediately"),
                                                    QStringLiteral("--a11y=%1").arg(isAccessible ? 1 : 0)},
                                                   QProcess::SeparateChannels,
                                                   {},
                                                   {}});
    // Asking the bus for its address would start a second launcher, without our setting: only the name is
    // watched.
    run(QStringLiteral("gdbus"),
        {QStringLiteral("wait"), QStringLiteral("--session"), QStringLiteral("--timeout"),
         QStringLiteral("20"), QStringLiteral("org.a11y.Bus")});
}

void PrivateDesktop::endAccessibilityBus() { m_accessibilityBus.reset(); }

void PrivateDesktop::startWindowManager()
{
    m_services.push_back(std::make_unique<Process>(
        QStringLiteral("openbox"),
        Process::Options{{QStringLiteral("--sm-disable")}, QProcess::SeparateChannels, {}, {}}));
    Screen screen;
    if (!screen.waitForRootProperty("_NET_SUPPORTING_WM_CHECK")) {
        throw std::runtime_error("openbox does not answer");
    }
}

QByteArray PrivateDesktop::log(const QString &program) const
{
    QFile file(folder(QStringLiteral("logs")) + u'/' + program + QStringLiteral(".log"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace vesk::test
