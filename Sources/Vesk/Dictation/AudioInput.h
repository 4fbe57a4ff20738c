#pragma once

#include "Dictation/AudioStats.h"
#include "Foundation/SerialQueue.h"
#include "Foundation/Task.h"
#include "Platform/AudioEngine.h"

#include <QFuture>

#include <mutex>

namespace vesk {

/// Records the microphone for one consumer, measures it, and goes on when the hardware changes meanwhile. May
/// be used from any thread except the one that blocks arrive on; start() and stop() wait for the thread
/// "vesk.audio", which controls the engine. The destructor stops.
class AudioInput {
public:
    /// A block and its loudness. Called on the sound library's thread: it must not wait, log or call this
    /// object, and may not keep the block, which is reused.
    using OnBuffer = std::function<void(const AudioBlock &, float loudness)>;

    /// The services must outlive this object.
    AudioInput(const AudioDevices &devices, AudioEngines &engines);
    ~AudioInput();
    AudioInput(const AudioInput &) = delete;
    AudioInput &operator=(const AudioInput &) = delete;

    /// Begins to record in a microphone mode of the settings. When it records already, goes on with the new
    /// consumer and new statistics. Throws VeskError::noMicrophone, VeskError::microphoneDenied or the
    /// engine's own reason.
    void start(const QString &mode, OnBuffer onBuffer);

    /// As start(), for the main thread: a server that hangs keeps it waiting, but nobody else. This object
    /// must outlive the task.
    Task<> starting(QString mode, OnBuffer onBuffer);

    /// As stop(), for the main thread. This object must outlive the task.
    Task<> stopping();

    /// As stop(), without waiting until it has happened.
    void stopLater();

    /// When it returns, the consumer is not running and will not be called again. The statistics stay.
    void stop();

    /// A copy of the statistics as they are now.
    AudioStats stats() const;

    /// When the first sample since start() was captured; nothing before it.
    std::optional<AudioEngine::CaptureTime> firstSample() const;

    /// Loudness of a block, 0..1: -50 dBFS and below reads 0, -5 dBFS and above 1, linear in decibels
    /// between. A block that holds anything but numbers is silent.
    static float loudness(const AudioBlock &block);

private:
    QFuture<void> perform(std::function<void()> work);
    void begin(const QString &mode, OnBuffer onBuffer);
    void attach();
    void attachAgain();
    void end();
    void measure(const AudioBlock &block, AudioEngine::CaptureTime captured);

    const AudioDevices &m_devices;
    std::unique_ptr<AudioEngine> m_engine;
    OnBuffer m_onBuffer;  ///< present exactly while recording; changed only while no tap is installed
    AudioBlock m_silence; ///< of the tap's thread: stands in for a block that is not sound

    mutable std::mutex m_lock; ///< guards what follows; held for an update of fields only
    AudioStats m_meter;
    std::optional<AudioEngine::CaptureTime> m_firstSample;

    SerialQueue m_queue; // last: its blocks use all of the above
};

} // namespace vesk
