#pragma once

#include "Platform/AudioDevices.h"
#include "Platform/Linux/Sound/PulseConnection.h"

namespace vesk {

/// The sound server's microphones, from what the connection knows.
class PulseAudioDevices final : public AudioDevices {
public:
    explicit PulseAudioDevices(const PulseConnection &connection)
        : m_connection(connection)
    {
    }

    Availability availability() const override { return m_connection.availability(); }
    std::optional<AudioDeviceID> defaultInput() const override;
    std::optional<QString> name(AudioDeviceID device) const override;
    std::optional<AudioTransport> transport(AudioDeviceID device) const override;
    std::vector<AudioDeviceID> inputDevices() const override;

private:
    const PulseConnection &m_connection;
};

} // namespace vesk
