#include "Platform/Linux/Speech/LiveStretches.h"

#include <algorithm>
#include <limits>

namespace vesk {

LiveStretches::LiveStretches(Rules rules)
    : m_rules(rules)
{
}

std::optional<LiveStep> LiveStretches::add(bool isSpeech, float energy)
{
    m_position += Window;
    return isSpeech ? addSpeech(energy) : addSilence();
}

std::optional<LiveStep> LiveStretches::finish(std::int64_t samples)
{
    m_position = samples;
    if (!m_open || m_open->speech < m_rules.leastSpeech) {
        return std::nullopt;
    }
    const Stretch rest = {beginOfOpen(), std::min(samples, m_open->spokenTo + m_rules.padding)};
    return complete(m_open->speculation.value_or(rest));
}

std::int64_t LiveStretches::neededFrom() const
{
    return m_open ? beginOfOpen() : std::max(m_floor, m_position - m_rules.speechDelay - m_rules.padding);
}

std::optional<LiveStep> LiveStretches::addSpeech(float energy)
{
    if (!m_open) {
        m_open = Open{std::max(m_position - m_rules.speechDelay, m_floor), 0, 0, {}};
        m_quietest.reset();
    }
    m_open->spokenTo = m_position;
    m_open->speech += Window;
    m_open->speculation.reset();
    return cutLongSpeech(energy);
}

std::optional<LiveStep> LiveStretches::addSilence()
{
    if (!m_open) {
        return settle();
    }
    const std::int64_t pause = m_position - m_open->spokenTo;
    if (m_open->speech < m_rules.leastSpeech) {
        if (pause >= m_rules.longPause) {
            m_open.reset();
        }
        return settle();
    }
    const Stretch heard = {beginOfOpen(), m_position};
    if (pause >= neededPause(m_open->spokenTo - m_open->spokenFrom)) {
        return complete(m_open->speculation.value_or(heard));
    }
    if (m_open->speculation) {
        return settle();
    }
    m_open->speculation = heard;
    return LiveStep{LiveStep::Kind::speculate, heard, 0};
}

/// Nothing while something is open: a stretch that is said already knows what it is joined to.
std::optional<LiveStep> LiveStretches::settle()
{
    if (m_isSettled || (m_open && m_open->speech >= m_rules.leastSpeech)
        || m_position - m_spokenBefore.value_or(0) < m_rules.settledPause) {
        return std::nullopt;
    }
    m_isSettled = true;
    return LiveStep{LiveStep::Kind::settle, {}, 0};
}

std::optional<LiveStep> LiveStretches::cutLongSpeech(float energy)
{
    const std::int64_t length = m_position - m_open->spokenFrom;
    if (length >= m_rules.eager && (!m_quietest || energy < m_quietest->energy)) {
        m_quietest = Quietest{m_position - Window / 2, energy};
    }
    if (length < m_rules.longest) {
        return std::nullopt;
    }
    const std::int64_t cut = m_quietest->position;
    const Open rest = {cut, m_position, m_position - cut, {}};
    m_open->spokenTo = cut;
    const LiveStep step = complete({beginOfOpen(), cut});
    m_open = rest;
    m_quietest.reset();
    return step;
}

LiveStep LiveStretches::complete(Stretch stretch)
{
    constexpr std::int64_t Endless = std::numeric_limits<std::int64_t>::max();
    const LiveStep step = {LiveStep::Kind::complete, stretch,
                           m_spokenBefore ? m_open->spokenFrom - *m_spokenBefore : Endless};
    m_floor = stretch.end;
    m_spokenBefore = m_open->spokenTo;
    m_isSettled = false;
    m_open.reset();
    return step;
}

std::int64_t LiveStretches::beginOfOpen() const
{
    return std::max(m_floor, m_open->spokenFrom - m_rules.padding);
}

std::int64_t LiveStretches::neededPause(std::int64_t length) const
{
    if (length >= m_rules.eager) {
        return 0;
    }
    return length >= m_rules.worthEnding ? m_rules.endingPause : m_rules.longPause;
}

} // namespace vesk
