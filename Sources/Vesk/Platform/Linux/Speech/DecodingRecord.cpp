#include "Platform/Linux/Speech/DecodingRecord.h"

#include <algorithm>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// The start of a recording that was cut out of a longer one often refers to what is no longer there.
constexpr int ForgivenLossesAtStart = 3;

/// By how much a whole file may miss its announcement: encoders announce the padding of their last block.
constexpr AudioDuration Tolerance{0.3};

/// The clocks of containers count milliseconds or worse.
constexpr AudioDuration SmallestHole{0.05};

/// "5.1 of 10.0 seconds", from ten minutes on in minutes.
QString proportion(AudioDuration part, AudioDuration whole)
{
    const bool isLong = whole >= std::chrono::minutes(10);
    const double unit = isLong ? 60.0 : 1.0;
    return u"%1 of %2 %3"_s.arg(QString::number(part.count() / unit, 'f', 1),
                                QString::number(whole.count() / unit, 'f', 1),
                                isLong ? u"minutes"_s : u"seconds"_s);
}

} // namespace

void DecodingRecord::noteSound(std::optional<AudioDuration> start, AudioDuration length, bool isSuspect)
{
    const AudioDuration begin = start ? *start : m_clock.value_or(AudioDuration(0));
    // Losses are damage only when sound follows them: the last packet of a cut file is not whole, and some
    // files end in tags that look like a packet. Some containers lose sound without an error: they complain
    // and go on behind a hole. A hole alone is a pause of the recording.
    const bool isHole = m_clock && begin - *m_clock > SmallestHole && m_hasComplaints;
    m_isDamaged = m_isDamaged || isHole || m_lossesSinceSound > (m_clock ? 0 : ForgivenLossesAtStart);
    m_lossesSinceSound = isSuspect ? 1 : 0;
    m_hasComplaintsSinceSound = false;

    m_firstAt = m_firstAt.value_or(begin);
    m_clock = begin + length;
    m_decoded += length;
    m_reached = std::max({m_reached, m_decoded, *m_clock - *m_firstAt});
}

std::optional<QString> DecodingRecord::shortfall(const QString &name, std::optional<AudioDuration> announced,
                                                 std::optional<AudioDuration> ofFile) const
{
    // Where only the whole file's length is known its pictures may outlast its sound, unless the file ends in
    // the middle of something.
    const bool isCut = m_lossesSinceSound > 0 || m_hasComplaintsSinceSound;
    const auto whole = announced || !isCut ? announced : ofFile;
    if (whole && m_reached + Tolerance < *whole) {
        return u"%1 %2: %3 could be read"_s.arg(name, m_isDamaged ? u"is damaged"_s : u"ends early"_s,
                                                proportion(m_reached, *whole));
    }
    if (m_isDamaged) {
        return u"%1 is damaged: some of its sound could not be decoded"_s.arg(name);
    }
    return std::nullopt;
}

} // namespace vesk
