#pragma once

#include "Platform/AudioEngine.h"

#include <functional>
#include <memory>

namespace vesk::test {

/// A computer with microphones whose hardware a test changes: the stage of SoundContract.cpp. Microphones are
/// told apart by a word, their name for the person is "The " and that word.
class SoundRig {
public:
    virtual ~SoundRig() = default;

    virtual const AudioDevices &devices() = 0;
    virtual AudioEngines &engines() = 0;

    /// The first one becomes the default.
    virtual void plug(const QString &name, AudioTransport transport = AudioTransport::other) = 0;
    virtual void unplug(const QString &name) = 0;
    virtual void makeDefault(const QString &name) = 0;

    /// From now on a tone is heard there, amplitude 0.5, without end; "speaker" is what the computer plays.
    virtual void sound(const QString &device, double frequency) = 0;

    /// The sound server crashes; it comes back with the microphones that it had.
    virtual void endServer() = 0;
    virtual void startServer() = 0;

    /// The sound server hangs, and recovers.
    virtual void freezeServer() = 0;
    virtual void thawServer() = 0;
};

/// Makes a rig without microphones.
struct SoundRigKind {
    std::string name;
    std::function<std::unique_ptr<SoundRig>()> make;
};

} // namespace vesk::test
