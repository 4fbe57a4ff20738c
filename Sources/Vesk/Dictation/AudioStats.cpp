#include "Dictation/AudioStats.h"

namespace vesk {

QString AudioStats::summary() const
{
    return u"device=\"" + device + u"\" frames=" + QString::number(frames) + u" peak="
        + QString::asprintf("%.2f", static_cast<double>(peak)) + u" restarts=" + QString::number(restarts);
}

QString AudioStats::silenceMessage() const
{
    constexpr float VeryQuiet = 0.15F; // about -43 dBFS: the noise of a room, not a voice
    if (frames == 0) {
        return u"The microphone (" + device + u") sent no sound";
    }
    if (peak < VeryQuiet) {
        return u"The microphone (" + device + u") is very quiet: nothing heard";
    }
    return QStringLiteral("No words recognized");
}

} // namespace vesk
