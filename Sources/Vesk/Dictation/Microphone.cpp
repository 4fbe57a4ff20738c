#include "Dictation/Microphone.h"

#include <algorithm>

namespace vesk::Microphone {

std::optional<AudioDeviceID> preferred(const QString &mode, const AudioDevices &devices)
{
    if (mode != u"auto") {
        return std::nullopt;
    }
    const auto standard = devices.defaultInput();
    if (!standard || !isBluetooth(*standard, devices)) {
        return std::nullopt;
    }
    const std::vector<AudioDeviceID> all = inputDevices(devices);
    const auto builtIn = std::find_if(all.begin(), all.end(), [&devices](AudioDeviceID device) {
        return devices.transport(device) == AudioTransport::builtIn;
    });
    return builtIn == all.end() ? std::nullopt : std::optional(*builtIn);
}

bool isBluetooth(AudioDeviceID device, const AudioDevices &devices)
{
    const auto transport = devices.transport(device);
    return transport == AudioTransport::bluetooth || transport == AudioTransport::bluetoothLowEnergy;
}

std::vector<AudioDeviceID> inputDevices(const AudioDevices &devices) { return devices.inputDevices(); }

} // namespace vesk::Microphone
