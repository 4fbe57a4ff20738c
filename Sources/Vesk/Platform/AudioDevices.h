#pragma once

#include "Platform/Availability.h"

#include <QString>

#include <optional>
#include <vector>

namespace vesk {

/// A device for as long as it is there; never 0. A device that comes back may have another one.
using AudioDeviceID = quint32;

/// How a device reaches the computer, as far as the choice of a microphone depends on it.
enum class AudioTransport {
    builtIn,
    bluetooth,
    bluetoothLowEnergy,
    other, ///< USB, network, virtual, or nothing said
};

/// The microphones of this computer. What a speaker plays, offered as a source, is not one of them. Callable
/// from any thread; answers what is known already and asks nobody, except that just after the program's
/// launch a call waits for the first answer, with a limit.
class AudioDevices {
public:
    virtual ~AudioDevices() = default;

    /// Whether sound can be recorded at all. No microphone being plugged in is not a reason: that changes.
    virtual Availability availability() const = 0;

    /// The system's default microphone; nothing when there is no microphone or nobody answers.
    virtual std::optional<AudioDeviceID> defaultInput() const = 0;

    /// The device's name as its person knows it; nothing when it is gone.
    virtual std::optional<QString> name(AudioDeviceID device) const = 0;

    /// Nothing when the device is gone.
    virtual std::optional<AudioTransport> transport(AudioDeviceID device) const = 0;

    /// Every microphone, in the system's order.
    virtual std::vector<AudioDeviceID> inputDevices() const = 0;
};

} // namespace vesk
