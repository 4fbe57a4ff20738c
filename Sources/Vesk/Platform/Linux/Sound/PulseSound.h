#pragma once

#include "Platform/Linux/Sound/PulseAudioDevices.h"
#include "Platform/Linux/Sound/PulseAudioEngine.h"

namespace vesk {

/// This computer's microphones over libpulse: one connection for the life of the program, made in the
/// background by the constructor. Owns its services; the engines that it made must end before it.
class PulseSound {
public:
    /// `server` as in PULSE_SERVER; empty: the person's own.
    explicit PulseSound(const std::string &server = {});

    const AudioDevices &audioDevices() const { return m_devices; }
    AudioEngines &audioEngines() { return m_engines; }

private:
    PulseConnection m_connection;
    PulseAudioDevices m_devices;
    PulseAudioEngines m_engines;
};

} // namespace vesk
