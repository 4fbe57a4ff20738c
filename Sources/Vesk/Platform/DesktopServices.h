#pragma once

#include "Platform/Accessibility.h"
#include "Platform/AudioEngine.h"
#include "Platform/KeyEvents.h"
#include "Platform/KeyPoster.h"
#include "Platform/Pasteboard.h"
#include "Platform/Permissions.h"

#include <functional>

namespace vesk {

/// What dictation asks of a desktop, answered by one object that owns all of it. Main thread; made once, at
/// launch.
class DesktopServices {
public:
    virtual ~DesktopServices() = default;

    virtual KeyEvents &keyEvents() = 0;
    virtual KeyPoster &keyPoster() = 0;
    virtual Pasteboard &pasteboard() = 0;
    virtual Accessibility &accessibility() = 0;
    virtual const AudioDevices &audioDevices() = 0;
    virtual AudioEngines &audioEngines() = 0;
    virtual const Permissions &permissions() = 0;

    /// Called when the screen is locked: from then on no key is reported. One handler; empty for nobody.
    virtual void setLockHandler(std::function<void()> handler) = 0;
};

} // namespace vesk
