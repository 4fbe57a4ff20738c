#include "Desktop/SoundServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QTcpServer>

#include <stdexcept>

namespace vesk::test {

using namespace Qt::StringLiterals;

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
    return {u"module-null-sink"_s, u"sink_name="_s + name, u"rate=48000"_s, u"norewinds=1"_s};
}

} // namespace

SoundServer::SoundServer(Kind kind)
    : m_kind(kind)
{
    for (const char *folder : {"run", "home"}) {
        QDir(m_folder.path()).mkdir(QString::fromLatin1(folder));
    }
    QFile::setPermissions(m_folder.filePath(u"run"_s),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString home = m_folder.filePath(u"home"_s);
    for (const char *variable :
         {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"}) {
        m_environment[QString::fromLatin1(variable)] = home;
    }
    for (const char *variable : {"XDG_RUNTIME_DIR", "PIPEWIRE_RUNTIME_DIR"}) {
        m_environment[QString::fromLatin1(variable)] = m_folder.filePath(u"run"_s);
    }
    for (const char *variable : {"DISPLAY", "PULSE_SERVER", "DBUS_SESSION_BUS_ADDRESS"}) {
        m_environment[QString::fromLatin1(variable)] = QString();
    }
    m_environment[u"DISABLE_RTKIT"_s] = u"1"_s;
    start();
}

SoundServer::~SoundServer()
{
    while (!m_programs.empty()) {
        m_programs.pop_back();
    }
}

QString SoundServer::serverOption() const { return u"--server="_s + QString::fromStdString(address()); }

std::string SoundServer::address() const
{
    return "unix:" + m_folder.filePath(u"run/pulse/native"_s).toStdString();
}

std::string SoundServer::refusingAddress()
{
    QTcpServer free;
    free.listen(QHostAddress::LocalHost);
    const QString port = QString::number(free.serverPort());
    free.close();
    loadModule({u"module-native-protocol-tcp"_s, u"listen=127.0.0.1"_s, QString(u"port=" + port),
                QString(u"auth-cookie=" + m_folder.filePath(u"cookie-of-others"_s))});
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
    control({u"unload-module"_s, QString::number(m_modules.at(name))});
    m_modules.erase(name);
    std::erase_if(m_microphones, [&name](const Microphone &each) { return each.name == name; });
}

void SoundServer::setDefaultMicrophone(const QString &name)
{
    makeDefault(u"source"_s, name);
    m_default = name;
}

std::unique_ptr<Process> SoundServer::play(const QString &soundFile, const QString &device)
{
    const QString sink = device == u"speaker" ? device : QString(device + u"_feed");
    return std::make_unique<Process>(u"paplay"_s,
                                     QStringList{serverOption(), u"--device="_s + sink, soundFile});
}

QByteArray SoundServer::control(const QStringList &arguments) const
{
    return run(u"pactl"_s, QStringList{serverOption()} + arguments);
}

void SoundServer::kill()
{
    while (!m_programs.empty()) {
        m_programs.back()->kill();
        m_programs.pop_back();
    }
    m_modules.clear();
    QFile::remove(m_folder.filePath(u"run/pulse/native"_s));
}

void SoundServer::start()
{
    m_kind == Kind::pulseAudio ? startPulseAudio() : startPipeWire();
    const QStringList question = {serverOption(), u"info"_s};
    waitUntil([&] { return succeeds(u"pactl"_s, question); }, "the sound server does not answer");
    loadModule(virtualSpeaker(u"speaker"_s));
    makeDefault(u"sink"_s, u"speaker"_s);
    for (const Microphone &microphone : m_microphones) {
        makeMicrophone(microphone);
    }
    if (!m_default.isEmpty()) {
        setDefaultMicrophone(m_default);
    }
}

void SoundServer::signal(int number) const
{
    for (const auto &program : m_programs) {
        program->signal(number);
    }
}

void SoundServer::startProgram(const QString &program, const QStringList &arguments)
{
    m_programs.push_back(std::make_unique<Process>(program, arguments, m_environment));
}

void SoundServer::startPulseAudio()
{
    startProgram(u"pulseaudio"_s,
                 {u"-n"_s, u"--daemonize=no"_s, u"--exit-idle-time=-1"_s, u"--use-pid-file=no"_s,
                  u"--log-target=stderr"_s, u"--load=module-native-protocol-unix auth-anonymous=1"_s});
}

void SoundServer::startPipeWire()
{
    // The part that decides about devices ends where it finds no session bus.
    startProgram(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address=1"_s});
    m_environment[u"DBUS_SESSION_BUS_ADDRESS"_s] = QString::fromUtf8(m_programs.back()->readLine());
    startProgram(u"pipewire"_s, {});
    const QString socket = m_folder.filePath(u"run/pipewire-0"_s);
    waitUntil([&] { return succeeds(u"pw-cli"_s, {u"--remote"_s, socket, u"info"_s, u"0"_s}); },
              "pipewire does not answer");
    startProgram(u"wireplumber"_s, {});
    startProgram(u"pipewire-pulse"_s, {});
}

void SoundServer::makeMicrophone(const Microphone &microphone)
{
    // What is played on a hidden speaker comes out of a source of its own, which is no monitor.
    const QString feed = microphone.name + u"_feed"_s;
    QStringList speaker = virtualSpeaker(feed);
    speaker << u"channels=%1"_s.arg(microphone.channels)
            << (microphone.channels == 1 ? u"channel_map=mono"_s : u"channel_map=stereo"_s);
    loadModule(speaker);
    m_modules[microphone.name] =
        loadModule({u"module-remap-source"_s, u"source_name="_s + microphone.name,
                    QString(u"master=" + feed + u".monitor"), u"channels=%1"_s.arg(microphone.channels),
                    QString(u"source_properties=\"device.description='The " + microphone.name + u"' "
                            + microphone.properties + u'"')});
    waitForMicrophone(microphone.name);
}

void SoundServer::makeDefault(const QString &kind, const QString &name)
{
    // PipeWire answers before the part is there that keeps the defaults.
    const QStringList request = {serverOption(), QString(u"set-default-" + kind), name};
    waitUntil(
        [&] {
            return succeeds(u"pactl"_s, request)
                && control({QString(u"get-default-" + kind)}).trimmed() == name.toUtf8();
        },
        "the default device was not changed");
}

int SoundServer::loadModule(const QStringList &arguments)
{
    return control(QStringList{u"load-module"_s} + arguments).trimmed().toInt();
}

void SoundServer::waitForMicrophone(const QString &name)
{
    waitUntil(
        [&] {
            return control({u"list"_s, u"short"_s, u"sources"_s})
                .contains(QString(u'\t' + name + u'\t').toUtf8());
        },
        "the microphone did not appear");
}

} // namespace vesk::test
