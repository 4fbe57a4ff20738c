#pragma once

#include "Platform/AudioDevices.h"

/// Which microphone a dictation records. Callable from any thread.
namespace vesk::Microphone {

/// The device to record in a microphone mode of the settings; nothing means the system's default. "auto"
/// passes over a Bluetooth headset, whose sound its own microphone degrades, for the computer's own.
std::optional<AudioDeviceID> preferred(const QString &mode, const AudioDevices &devices);

/// A device whose transport cannot be read counts as none.
bool isBluetooth(AudioDeviceID device, const AudioDevices &devices);

/// Every device that records, in the system's order.
std::vector<AudioDeviceID> inputDevices(const AudioDevices &devices);

} // namespace vesk::Microphone
