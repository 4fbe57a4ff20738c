#pragma once

#include "Platform/AudioBlock.h"
#include "Platform/AudioDevices.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace vesk {

/// Records one microphone. Used by one thread at a time, which is not the one its handlers are called on; it
/// may wait for the system for a short time with a limit. The destructor ends the recording.
class AudioEngine {
public:
    using CaptureTime = std::chrono::steady_clock::time_point;

    /// Takes some frames that follow each other, and when the first of them was captured (at the latest: what
    /// the system itself holds back is not known). The block is reused and ends with the call. On the sound
    /// library's own thread, so it must not wait, log or call this engine.
    using Tap = std::function<void(const AudioBlock &, CaptureTime)>;

    virtual ~AudioEngine() = default;

    /// Records this device from the next start() on; nothing means the system's default, also when that
    /// changes. A device that is gone counts as none chosen.
    virtual void setCurrentDevice(std::optional<AudioDeviceID> device) = 0;

    /// What the device that would be recorded delivers now; not usable when there is none. Throws
    /// VeskError::microphoneDenied when the system refuses.
    virtual AudioFormat inputFormat() = 0;

    /// Hands everything that is recorded to `tap`, in blocks of the given format and of at most `bufferSize`
    /// frames. Replaces an earlier tap.
    virtual void installTap(qsizetype bufferSize, const AudioFormat &format, Tap tap) = 0;

    /// When it returns, the tap is not running and will not be called again.
    virtual void removeTap() = 0;

    /// Brings everything about that can be before a start.
    virtual void prepare() = 0;

    /// Begins to record, or goes on with what changed since. Throws VeskError::microphoneDenied,
    /// VeskError::noMicrophone or the system's own reason.
    virtual void start() = 0;

    /// False also when the recording ended by itself.
    virtual bool isRunning() const = 0;

    /// Ends the recording; the tap stays installed.
    virtual void stop() = 0;

    /// Called on any thread when what is recorded is no longer what start() would record: the device is gone,
    /// another became the default, the sound server ended, or came back after a start that failed. It must
    /// not wait or call this engine. Nothing removes the handler; when this returns, the former one is not
    /// running and will not be called again.
    virtual void setConfigurationChangeHandler(std::function<void()> handler) = 0;
};

/// Makes engines. Callable from any thread.
class AudioEngines {
public:
    virtual ~AudioEngines() = default;
    virtual std::unique_ptr<AudioEngine> make() = 0;
};

} // namespace vesk
