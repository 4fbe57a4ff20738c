#pragma once

#include "Desktop/Process.h"
#include "Desktop/Screen.h"
#include "Desktop/SoundServer.h"
#include "Support/Await.h"
#include "Support/TemporaryHome.h"

#include <csignal>
#include <sys/resource.h>

namespace vesk::test {

using namespace Qt::StringLiterals;

/// Lets the program's event loop run for a while: a person who waits.
inline void pause(std::chrono::milliseconds time)
{
    const QDeadlineTimer end(time);
    eventually([&end] { return end.hasExpired(); }, time);
}

/// The application as it is installed, started without arguments on the private desktop: driven by keys, seen
/// through its log and the programs that it types into. Its home is the desktop's; whoever wants other
/// settings writes them before.
class ShippedApplication {
public:
    static constexpr int DictationKey = 108; ///< right Alt

    /// Returns when the model is loaded. Throws std::runtime_error. A sound server with one microphone,
    /// "desk", belongs to it.
    explicit ShippedApplication(const QString &program)
        : m_program(program)
        , m_soundServer(SoundServer::Kind::pulseAudio)
    {
        m_soundServer.addMicrophone({u"desk"_s, {}, 1});
        start();
    }

    qint64 processId() const { return m_process->id(); }
    bool isRunning() const { return m_process && m_process->isRunning(); }
    SoundServer &soundServer() { return m_soundServer; }

    /// As if the machine had taken it away; start() brings it back.
    void kill()
    {
        m_process->kill();
        m_process.reset();
    }
    void start()
    {
        launch();
        waitForModel();
    }
    /// The two halves of start().
    void launch()
    {
        m_modelsBefore = log().count("speech model ready");
        m_process = std::make_unique<Process>(
            m_program,
            Process::Options{{},
                             QProcess::SeparateChannels,
                             [] { std::signal(SIGXFSZ, SIG_IGN); }, // a full disk has no signal either
                             {{u"PULSE_SERVER"_s, QString::fromStdString(m_soundServer.address())}}});
    }
    void waitForModel()
    {
        if (!waitForLog("speech model ready", m_modelsBefore + 1)) {
            throw std::runtime_error("the application does not load its model: " + log().toStdString());
        }
    }

    /// A machine that sleeps: neither the application nor the sound server runs until it wakes.
    void fallAsleep()
    {
        m_process->signal(SIGSTOP);
        m_soundServer.freeze();
    }
    void wake()
    {
        m_soundServer.thaw();
        m_process->signal(SIGCONT);
    }
    /// From now on no file of its own can grow; emptyDisk() makes room again.
    void fillDisk() const { limitFiles(0); }
    void emptyDisk() const { limitFiles(RLIM_INFINITY); }

    /// Presses the key; what is said until cancel() is dropped.
    void hold() { m_screen.keyDown(DictationKey); }
    /// Another key in the hold, then both up.
    void cancel()
    {
        constexpr int LeftShift = 50; // types nothing
        m_screen.tap(LeftShift);
        m_screen.keyUp(DictationKey);
    }

    /// Holds the key while the clip is said at its own speed: pressed 0.1 s before it begins, let go 0.2 s
    /// after its end. Returns the moment of the release.
    std::chrono::steady_clock::time_point dictate(const QString &clip)
    {
        m_screen.keyDown(DictationKey);
        pause(std::chrono::milliseconds(100));
        const auto voice = m_soundServer.play(clip, u"desk"_s);
        eventually([&voice] { return !voice->isRunning(); });
        pause(std::chrono::milliseconds(200));
        const auto released = std::chrono::steady_clock::now();
        m_screen.keyUp(DictationKey);
        return released;
    }

    /// The lines of its log so far.
    static QByteArray log() { return logText(); }

    /// Waits until so many lines hold the text; false when they do not within a minute.
    static bool waitForLog(const QByteArray &text, qsizetype count = 1)
    {
        return eventually([&] { return log().count(text) >= count; }, std::chrono::minutes(1));
    }

private:
    void limitFiles(rlim_t bytes) const
    {
        const rlimit limit = {bytes, RLIM_INFINITY};
        if (::prlimit(static_cast<pid_t>(m_process->id()), RLIMIT_FSIZE, &limit, nullptr) != 0) {
            throw std::runtime_error("the application's files cannot be limited");
        }
    }

    QString m_program;
    SoundServer m_soundServer;
    Screen m_screen;
    std::unique_ptr<Process> m_process;
    qsizetype m_modelsBefore = 0; ///< that the log knew of before the launch
};

} // namespace vesk::test
