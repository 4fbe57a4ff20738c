#pragma once

#include "Platform/DesktopServices.h"
#include "Platform/Linux/Accessibility/LinuxAccessibility.h"
#include "Platform/Linux/Keys/InjectedKeys.h"
#include "Platform/Linux/Keys/XInputKeyEvents.h"
#include "Platform/Linux/Keys/XTestKeyPoster.h"
#include "Platform/Linux/Pasteboard/X11Pasteboard.h"
#include "Platform/Linux/Sound/PulseSound.h"

namespace vesk {

/// An X11 desktop with a PulseAudio or PipeWire server. What it lacks shows in each service's availability.
class LinuxDesktop final : public DesktopServices, private Permissions {
public:
    /// The clock must outlive it.
    explicit LinuxDesktop(Clock &clock);

    KeyEvents &keyEvents() override { return m_keyEvents; }
    KeyPoster &keyPoster() override { return m_keyPoster; }
    Pasteboard &pasteboard() override { return m_pasteboard; }
    LinuxAccessibility &accessibility() override { return m_accessibility; }
    const AudioDevices &audioDevices() override { return m_sound.audioDevices(); }
    AudioEngines &audioEngines() override { return m_sound.audioEngines(); }
    const Permissions &permissions() override { return *this; }
    void setLockHandler(std::function<void()> handler) override
    {
        m_keyEvents.setLockHandler(std::move(handler));
    }

private:
    Availability accessibility() const override;
    Availability microphone() const override;

    InjectedKeys m_injected; // first: both ends of the keyboard use it
    XInputKeyEvents m_keyEvents{m_injected};
    XTestKeyPoster m_keyPoster;
    X11Pasteboard m_pasteboard;
    LinuxAccessibility m_accessibility;
    PulseSound m_sound;
};

} // namespace vesk
