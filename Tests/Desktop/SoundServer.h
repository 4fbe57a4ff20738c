#pragma once

#include "Desktop/Process.h"

#include <QTemporaryDir>

#include <csignal>
#include <map>
#include <memory>
#include <vector>

namespace vesk::test {

/// A sound server for a test alone, in a runtime folder of its own, with a speaker ("speaker") and the
/// microphones that the test adds. Needs no display and no session. Every function returns when its effect
/// can be seen by other programs, and throws std::runtime_error when it cannot.
class SoundServer {
public:
    enum class Kind {
        pulseAudio,
        pipeWire,
    };

    struct Microphone {
        QString name;            ///< a word; the server's name for it
        QString properties = {}; ///< as in a property list: "device.bus=usb device.form_factor=webcam"
        int channels = 2;
    };

    explicit SoundServer(Kind kind);
    ~SoundServer();
    SoundServer(const SoundServer &) = delete;
    SoundServer &operator=(const SoundServer &) = delete;

    /// As in PULSE_SERVER.
    std::string address() const;

    /// A way to the server on which it takes nobody; PulseAudio only.
    std::string refusingAddress();

    /// The first one becomes the default.
    void addMicrophone(const Microphone &microphone);
    void removeMicrophone(const QString &name);
    void setDefaultMicrophone(const QString &name);

    /// Says a file into a microphone, or plays it on "speaker", from now on until its end or that of the
    /// returned program.
    std::unique_ptr<Process> play(const QString &soundFile, const QString &device);

    /// Runs pactl.
    QByteArray control(const QStringList &arguments) const;

    /// Ends the server as a crash does; start() brings it back with the microphones that it had, and the
    /// default.
    void kill();
    void start();

    /// The server hangs, and recovers.
    void freeze() { signal(SIGSTOP); }
    void thaw() { signal(SIGCONT); }

private:
    void signal(int number) const;
    QString serverOption() const;
    void startProgram(const QString &program, const QStringList &arguments);
    void startPulseAudio();
    void startPipeWire();
    void makeMicrophone(const Microphone &microphone);
    void makeDefault(const QString &kind, const QString &name);
    int loadModule(const QStringList &arguments);
    void waitForMicrophone(const QString &name);

    Kind m_kind;
    QTemporaryDir m_folder;
    QMap<QString, QString> m_environment;
    std::vector<std::unique_ptr<Process>> m_programs; ///< in the order of their start
    std::vector<Microphone> m_microphones;
    std::map<QString, int> m_modules; ///< of each microphone: the module whose end removes it
    QString m_default;
};

} // namespace vesk::test
