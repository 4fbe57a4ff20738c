#include "Platform/Linux/Sound/PulseAudioDevices.h"

namespace vesk {

std::optional<AudioDeviceID> PulseAudioDevices::defaultInput() const
{
    const PulseInventory inventory = m_connection.awaitInventory();
    const PulseMicrophone *standard = inventory.standard();
    return standard == nullptr ? std::nullopt : std::optional(standard->device());
}

std::optional<QString> PulseAudioDevices::name(AudioDeviceID device) const
{
    const PulseInventory inventory = m_connection.awaitInventory();
    const PulseMicrophone *found = inventory.find(device);
    return found == nullptr ? std::nullopt : std::optional(found->description);
}

std::optional<AudioTransport> PulseAudioDevices::transport(AudioDeviceID device) const
{
    const PulseInventory inventory = m_connection.awaitInventory();
    const PulseMicrophone *found = inventory.find(device);
    return found == nullptr ? std::nullopt : std::optional(found->transport);
}

std::vector<AudioDeviceID> PulseAudioDevices::inputDevices() const
{
    std::vector<AudioDeviceID> devices;
    for (const PulseMicrophone &microphone : m_connection.awaitInventory().microphones) {
        devices.push_back(microphone.device());
    }
    return devices;
}

} // namespace vesk
