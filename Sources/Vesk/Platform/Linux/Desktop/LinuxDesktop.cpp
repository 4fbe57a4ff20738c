#include "Platform/Linux/Desktop/LinuxDesktop.h"

namespace vesk {

LinuxDesktop::LinuxDesktop(Clock &clock)
    : m_keyPoster(m_injected, clock)
{
}

Availability LinuxDesktop::accessibility() const
{
    const Availability keys = m_keyEvents.availability();
    return keys.isAvailable() ? m_keyPoster.availability() : keys;
}

Availability LinuxDesktop::microphone() const { return m_sound.audioDevices().availability(); }

} // namespace vesk
