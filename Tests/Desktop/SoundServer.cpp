#include "Desktop/SoundServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QTcpServer>

#include <csignal>
#include <stdexcept>

namespace vesk::test {

namespace {

/// Asks until the answer is right. Each question is a program, which is pause enough.
template <typename Condition>
void waitUntil(Condition condition, const char *what)
{
    const QDeadlineTimer deadline(20'000);
    while (!condition()) {
        if (deadline.hasExpired()) {
            throw std::runtime_error(what);
        }
    }
}

bool succeeds(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(5'000) && process.exitCode() == 0;
}

/// norewinds: without it an idle virtual device swallows the first second.
QStringList virtualSpeaker(const QString &name)
{
    return {QStringLiteral("module-null-sink"), QStringLiteral("sink_name=") + name,
            QStringLiteral("rate=48000"), QStringLiteral("norewinds=1")};
}

} // namespace

SoundServer::SoundServer(Kind kind)
    : m_kind(kind)
{
    for (const char *folder : {"run", "home"}) {
        QDir(m_folder.path()).mkdir(QString::fromLatin1(folder));
    }
    QFile::setPermissions(m_folder.filePath(QStringLiteral("run")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString home = m_folder.filePath(QStringLiteral("home"));
    for (const char *variable :
         {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"}) {
        m_environment[QString::fromLatin1(variable)] = home;
    }
    for (const char *variable : {"XDG_RUNTIME_DIR", "PIPEWIRE_RUNTIME_DIR"}) {
        m_environment[QString::fromLatin1(variable)] = m_folder.filePath(QStringLiteral("run"));
    }
    for (const char *variable : {"DISPLAY", "PULSE_SERVER", "DBUS_SESSION_BUS_ADDRESS"}) {
        m_environment[QString::fromLatin1(variable)] = QString();
    }
    m_environment[QStringLiteral("DISABLE_RTKIT")] = QStringLiteral("1");
    start();
}

SoundServer::~SoundServer()
{
    while (!m_programs.empty()) {
        m_programs.pop_back();
    }
}

std::string SoundServer::address() const
{
    return "unix:" + m_folder.filePath(QStringLiteral("run/pulse/native")).toStdString();
}

std::string SoundServer::refusingAddress()
{
    QTcpServer free;
    free.listen(QHostAddress::LocalHost);
    const QString port = QString::number(free.serverPort());
    free.close();
    loadModule({QStringLiteral("module-native-protocol-tcp"), QStringLiteral("listen=127.0.0.1"),
                QString(u"port=" + port),
                QString(u"auth-cookie=" + m_folder.filePath(QStringLiteral("cookie-of-others")))});
    return "tcp:127.0.0.1:" + port.toStdString();
}

void SoundServer::addMicrophone(const Microphone &microphone)
{
    makeMicrophone(microphone);
    m_microphones.push_back(microphone);
    if (m_default.isEmpty()) {
        setDefaultMicrophone(microphone.name);
    }
}

void SoundServer::removeMicrophone(const QString &name)
{
    control({QStringLiteral("unload-module"), QString::number(m_modules.at(name))});
    m_modules.erase(name);
    std::erase_if(m_microphones, [&name](const Microphone &each) { return each.name == name; });
}

void SoundServer::setDefaultMicrophone(const QString &name)
{
    makeDefault(QStringLiteral("source"), name);
    m_default = name;
}

std::unique_ptr<Process> SoundServer::play(const QString &soundFile, const QString &device)
{
    const QString sink = device == u"speaker" ? device : QString(device + u"_feed");
    Process::Options options;
    options.arguments = QStringList{QStringLiteral("--server=") + QString::fromStdString(address()),
                                    QStringLiteral("--device=") + sink, soundFile};
    return std::make_unique<Process>(QStringLiteral("paplay"), options);
}

QByteArray SoundServer::control(const QStringList &arguments) const
{
    return run(QStringLiteral("pactl"),
               QStringList{QStringLiteral("--server=") + QString::fromStdString(address())} + arguments);
}

void SoundServer::kill()
{
    while (!m_programs.empty()) {
        m_programs.back()->kill();
        m_programs.pop_back();
    }
    m_modules.clear();
    QFile::remove(m_folder.filePath(QStringLiteral("run/pulse/native")));
}

void SoundServer::start()
{
    m_kind == Kind::pulseAudio ? startPulseAudio() : startPipeWire();
    const QStringList question = {QStringLiteral("--server=") + QString::fromStdString(address()),
                                  QStringLiteral("info")};
    waitUntil([&] { return succeeds(QStringLiteral("pactl"), question); },
              "the sound server does not answer");
    loadModule(virtualSpeaker(QStringLiteral("speaker")));
    makeDefault(QStringLiteral("sink"), QStringLiteral("speaker"));
    for (const Microphone &microphone : m_microphones) {
        makeMicrophone(microphone);
    }
    if (!m_default.isEmpty()) {
        setDefaultMicrophone(m_default);
    }
}

void SoundServer::freeze()
{
    for (const auto &program : m_programs) {
        program->signal(SIGSTOP);
    }
}

void SoundServer::thaw()
{
    for (const auto &program : m_programs) {
        program->signal(SIGCONT);
    }
}

void SoundServer::startProgram(const QString &program, const QStringList &arguments)
{
    Process::Options options;
    options.arguments = arguments;
    options.environment = m_environment;
    m_programs.push_back(std::make_unique<Process>(program, options));
}

void SoundServer::startPulseAudio()
{
    startProgram(QStringLiteral("pulseaudio"),
                 {QStringLiteral("-n"), QStringLiteral("--daemonize=no"),
                  QStringLiteral("--exit-idle-time=-1"), QStringLiteral("--use-pid-file=no"),
                  QStringLiteral("--log-target=stderr"),
                  QStringLiteral("--load=module-native-protocol-unix auth-anonymous=1")});
}

void SoundServer::startPipeWire()
{
    // The part that decides about devices ends where it finds no session bus.
    startProgram(
        QStringLiteral("dbus-daemon"),
        {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
    m_environment[QStringLiteral("DBUS_SESSION_BUS_ADDRESS")] =
        QString::fromUtf8(m_programs.back()->readLine());
    startProgram(QStringLiteral("pipewire"), {});
    const QString socket = m_folder.filePath(QStringLiteral("run/pipewire-0"));
    waitUntil(
        [&] {
            return succeeds(
                QStringLiteral("pw-cli"),
                {QStringLiteral("--remote"), socket, QStringLiteral("info"), QStringLiteral("0")});
        },
        "pipewire does not answer");
    startProgram(QStringLiteral("wireplumber"), {});
    startProgram(QStringLiteral("pipewire-pulse"), {});
}

void SoundServer::makeMicrophone(const Microphone &microphone)
{
    // What is played on a hidden speaker comes out of a source of its own, which is no monitor.
    const QString feed = microphone.name + QStringLiteral("_feed");
    QStringList speaker = virtualSpeaker(feed);
    speaker << QStringLiteral("channels=%1").arg(microphone.channels)
            << (microphone.channels == 1 ? QStringLiteral("channel_map=mono")
                                         : QStringLiteral("channel_map=stereo"));
    loadModule(speaker);
    m_modules[microphone.name] = loadModule(
        {QStringLiteral("module-remap-source"), QStringLiteral("source_name=") + microphone.name,
         QString(u"master=" + feed + u".monitor"), QStringLiteral("channels=%1").arg(microphone.channels),
         QString(u"source_properties=\"device.description='The " + microphone.name + u"' "
                 + microphone.properties + u'"')});
    waitForMicrophone(microphone.name);
}

void SoundServer::makeDefault(const QString &kind, const QString &name)
{
    // PipeWire answers before the part is there that keeps the defaults.
    const QStringList request = {QStringLiteral("--server=") + QString::fromStdString(address()),
                                 QString(u"set-default-" + kind), name};
    waitUntil(
        [&] {
            return succeeds(QStringLiteral("pactl"), request)
                && control({QString(u"get-default-" + kind)}).trimmed() == name.toUtf8();
        },
        "the default device was not changed");
}

int SoundServer::loadModule(const QStringList &arguments)
{
    return control(QStringList{QStringLiteral("load-module")} + arguments).trimmed().toInt();
}

void SoundServer::waitForMicrophone(const QString &name)
{
    waitUntil(
        [&] {
            return control({QStringLiteral("list"), QStringLiteral("short"), QStringLiteral("sources")})
                .contains(QString(u'\t' + name + u'\t').toUtf8());
        },
        "the microphone did not appear");
}

} // namespace vesk::test
