#include "Desktop/PrivateDesktop.h"

#include "Desktop/Screen.h"

#include <QDir>

#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>

namespace vesk::test {

using namespace Qt::StringLiterals;

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

PrivateDesktop::PrivateDesktop(const QString &screen)
{
    if (!m_folder.isValid()) {
        throw std::runtime_error("no folder for the private desktop");
    }
    setEnvironment();
    startDisplay(screen);
    startSessionBus();
    startAccessibilityBus();
    startWindowManager();
    theDesktop = this;
}

PrivateDesktop::~PrivateDesktop()
{
    theDesktop = nullptr;
    endAccessibilityBus();
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
    QFile::setPermissions(folder(u"run"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
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
    Process::Options options;
    options.arguments = QStringList{u"-displayfd"_s, QString::number(writing), u"-screen"_s, u"0"_s,
                                    screen,          u"-nolisten"_s,           u"tcp"_s,     u"-noreset"_s,
                                    u"-ac"_s};
    options.beforeExec = [writing] { fcntl(writing, F_SETFD, 0); };
    m_services.push_back(std::make_unique<Process>(u"Xvfb"_s, options));
    close(writing);
    const QByteArray number = readDisplayNumber(ends[0]);
    close(ends[0]);
    qputenv("DISPLAY", ':' + number);
}

void PrivateDesktop::startSessionBus()
{
    auto bus = std::make_unique<Process>(u"dbus-daemon"_s,
                                         QStringList{u"--session"_s, u"--nofork"_s, u"--print-address=1"_s});
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus->readLine());
    m_services.push_back(std::move(bus));
}

void PrivateDesktop::startAccessibilityBus()
{
    m_accessibilityBus = std::make_unique<Process>(u"/usr/libexec/at-spi-bus-launcher"_s,
                                                   QStringList{u"--launch-immediately"_s, u"--a11y=1"_s});
    // Asking the bus for its address would start a second launcher, without our setting: only the name is
    // watched.
    run(u"gdbus"_s, {u"wait"_s, u"--session"_s, u"--timeout"_s, u"20"_s, u"org.a11y.Bus"_s});
}

void PrivateDesktop::startWindowManager()
{
    m_services.push_back(std::make_unique<Process>(u"openbox"_s, QStringList{u"--sm-disable"_s}));
    Screen screen;
    if (!screen.waitForRootProperty("_NET_SUPPORTING_WM_CHECK")) {
        throw std::runtime_error("openbox does not answer");
    }
}

} // namespace vesk::test
