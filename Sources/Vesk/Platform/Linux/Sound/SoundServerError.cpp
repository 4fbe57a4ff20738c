#include "Platform/Linux/Sound/SoundServerError.h"

#include <pulse/error.h>

namespace vesk {

SoundServerError::SoundServerError(QString description)
    : m_description(std::move(description))
{
}

SoundServerError SoundServerError::noAnswer()
{
    return SoundServerError(QStringLiteral("The sound server does not answer"));
}

SoundServerError SoundServerError::notRunning()
{
    return SoundServerError(QStringLiteral("No sound server is running"));
}

SoundServerError SoundServerError::refused(int error)
{
    return SoundServerError(u"The microphone could not be started: " + QString::fromUtf8(pa_strerror(error)));
}

} // namespace vesk
