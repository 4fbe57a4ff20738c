#pragma once

#include "Desktop/Process.h"
#include "Desktop/Screen.h"
#include "Desktop/SoundServer.h"

namespace vesk::test {

/// The application as it is installed, started without arguments on the private desktop: driven by keys, seen
/// through its log and the programs that it types into. Its home is the desktop's; whoever wants other
/// settings writes them before.
class ShippedApplication {
public:
    static constexpr int DictationKey = 108; ///< right Alt

    /// Returns when the model is loaded. Throws std::runtime_error. A sound server with one microphone,
    /// "desk", belongs to it.
    explicit ShippedApplication(const QString &program);
    ~ShippedApplication();

    qint64 processId() const { return m_process->id(); }
    bool isRunning() const { return m_process && m_process->isRunning(); }
    SoundServer &soundServer() { return m_soundServer; }

    /// As if the machine had taken it away; start() brings it back.
    void kill();
    void start();
    /// The two halves of start().
    void launch();
    void waitForModel();

    /// Presses the key; what is said until cancel() is dropped.
    void hold() { m_screen.keyDown(DictationKey); }
    /// Another key in the hold, then both up.
    void cancel();

    /// Holds the key while the clip is said at its own speed: pressed 0.1 s before it begins, let go 0.2 s
    /// after its end. Returns the moment of the release.
    std::chrono::steady_clock::time_point dictate(const QString &clip);

    /// The lines of its log so far.
    static QByteArray log();

    /// Waits until so many lines hold the text; false when they do not within a minute.
    static bool waitForLog(const QByteArray &text, qsizetype count = 1);

    /// Megabytes (MiB) that would be free if it ended: the private ones and its share of the others.
    double memory() const;

    /// Seconds of processor time so far, of all its threads.
    double processorTime() const;

    /// How often its threads have gone to sleep and been woken.
    qint64 wakeUps() const;

private:
    QString m_program;
    SoundServer m_soundServer;
    Screen m_screen;
    std::unique_ptr<Process> m_process;
    qsizetype m_modelsBefore = 0; ///< that the log knew of before the launch
};

/// Lets the program's event loop run for a while: a person who waits.
void pause(std::chrono::milliseconds time);

} // namespace vesk::test
