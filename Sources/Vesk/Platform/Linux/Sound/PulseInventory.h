#pragma once

#include "Platform/AudioBlock.h"
#include "Platform/AudioDevices.h"

#include <pulse/pulseaudio.h>
#include <string>
#include <vector>

namespace vesk {

/// A source of the sound server that is a microphone. Its number counts within one run of the server; number
/// 0 is an ordinary one there, and none for an AudioDeviceID.
struct PulseMicrophone {
    quint32 index = 0;
    std::string name; ///< the server's; survives its restart
    QString description;
    AudioTransport transport = AudioTransport::other;
    pa_sample_spec sampleSpec = {};
    pa_channel_map channels = {};

    AudioDeviceID device() const { return index + 1; }
    AudioFormat format() const { return {static_cast<int>(sampleSpec.rate), sampleSpec.channels}; }
};

/// What the server said last about its microphones. A plain value.
struct PulseInventory {
    quint64 run = 0; ///< counts connections; 0 without one
    std::string defaultSource;
    std::vector<PulseMicrophone> microphones; ///< in the server's order, no monitor among them

    /// Adds the source unless it is a monitor, which carries what a speaker plays, or not yet complete.
    void add(const pa_source_info &source);

    /// Null when there is none.
    const PulseMicrophone *find(AudioDeviceID device) const;
    const PulseMicrophone *find(const std::string &name) const;

    /// The server's default. When that is a monitor, as with servers that fall back to one, the first
    /// microphone; null when there is none.
    const PulseMicrophone *standard() const;
};

} // namespace vesk
