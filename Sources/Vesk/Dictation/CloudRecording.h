#pragma once

#include "Dictation/AudioInput.h"
#include "Foundation/Task.h"
#include "Platform/AudioConverter.h"
#include "Platform/AudioFiles.h"

namespace vesk {

/// One recording of the microphone for upload: a small compressed file in the temporary folder, which nobody
/// else may read. Main thread; used once: start(), then finish() or cancel(). Dropping it cancels.
class CloudRecording {
public:
    /// What it needs of this computer; all of it outlives every recording.
    struct Services {
        AudioFiles &files;
        AudioConverters &converters;
        const AudioDevices &devices;
        AudioEngines &engines;
    };
    using Level = std::function<void(float)>;

    /// AAC at 16 kHz, one channel, 32 kbit/s: what the server takes, 4 KB a second.
    static const AudioFileSettings settings;

    explicit CloudRecording(const Services &services);
    ~CloudRecording();
    CloudRecording(const CloudRecording &) = delete;
    CloudRecording &operator=(const CloudRecording &) = delete;

    /// Where the recording goes, known from the beginning.
    const QString &url() const;

    /// Returns at once; what goes wrong is thrown by finish(). `level` is told the loudness of every block,
    /// 0..1, on the thread that blocks arrive on.
    void start(const QString &microphone, Level level);

    /// The start-up, once it has been asked for and until finish() or cancel(); may be awaited by several.
    const std::optional<Task<>> &setup() const;

    /// Ends the recording and gives the file. Its owner discards it. Throws what the start-up threw:
    /// AudioFileError, VeskError::noMicrophone, microphoneDenied or the sound system's own reason; then there
    /// is no file.
    Task<QString> finish();

    /// Ends the recording and deletes the file. Returns at once.
    void cancel();

    /// Deletes a recording, if it is there.
    static void discard(const QString &url);

    /// Of the microphone, also after the end: whether the recording is worth uploading.
    AudioStats stats() const;

    /// After finish(): why a part of what was said is not in the file, as on a full disk, in a sentence;
    /// nothing when all of it is.
    const std::optional<QString> &shortfall() const;

private:
    struct Session;
    static Task<> setUp(std::shared_ptr<Session> session, QString microphone, Level level);
    static Task<QString> finishSession(std::shared_ptr<Session> session);
    static Task<> cancelSession(std::shared_ptr<Session> session);

    const std::shared_ptr<Session> m_session; ///< also kept by what still waits for it
    bool m_isOver = false;
};

} // namespace vesk
