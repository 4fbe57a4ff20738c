#pragma once

#include "Dictation/AudioInput.h"
#include "Platform/AudioConverter.h"
#include "Platform/SpeechModels.h"

#include <QStringList>

namespace vesk {

/// One push-to-talk recognition on the machine: the microphone is recognised while the person speaks, so that
/// little is left to do at the end. Main thread; used once: start(), then finish() or cancel(). Dropping it
/// cancels.
class LiveDictation {
public:
    /// What it needs of this computer; all of it outlives every recognition.
    struct Services {
        SpeechModels &models;
        AudioConverters &converters;
        const AudioDevices &devices;
        AudioEngines &engines;
    };
    using Level = std::function<void(float)>;

    explicit LiveDictation(const Services &services);
    ~LiveDictation();
    LiveDictation(const LiveDictation &) = delete;
    LiveDictation &operator=(const LiveDictation &) = delete;

    /// Returns at once; what goes wrong is thrown by setup() and finish(). `microphone` is the settings'
    /// mode. `level` is told the loudness of every block, 0..1, on the thread that blocks arrive on. A model
    /// that is still being loaded is no failure: what is said is kept until it is there.
    void start(const QString &localeIdentifier, const QStringList &vocabulary, const QString &microphone,
               Level level);

    /// The start-up, once it has been asked for and until finish() or cancel(); may be awaited by several.
    /// Throws VeskError::unsupportedLocale, noSpeechModel, noMicrophone, microphoneDenied or the sound
    /// system's own reason.
    const std::optional<Task<>> &setup() const;

    /// Stops the microphone and gives what was said; nothing when it was never started. Throws what the
    /// start-up or the recogniser threw.
    Task<QString> finish();

    /// Stops everything and forgets what was said. Returns at once.
    void cancel();

    /// Of the microphone, also after the end.
    AudioStats stats() const;

private:
    struct Session;
    static Task<> setUp(std::shared_ptr<Session> session, QString localeIdentifier, QStringList vocabulary,
                        QString microphone, Level level);
    static Task<QString> finishSession(std::shared_ptr<Session> session);
    static Task<> cancelSession(std::shared_ptr<Session> session);

    const std::shared_ptr<Session> m_session; ///< also kept by what still waits for it
    bool m_isOver = false;
};

} // namespace vesk
