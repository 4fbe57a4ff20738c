#include "Platform/Linux/Sound/PulseSound.h"

namespace vesk {

PulseSound::PulseSound(const std::string &server)
    : m_connection(server)
    , m_devices(m_connection)
    , m_engines(m_connection)
{
}

} // namespace vesk
