#include "Platform/Linux/Speech/StretchCutter.h"

#include <algorithm>
#include <limits>

namespace vesk {

namespace {

constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();

} // namespace

StretchCutter::StretchCutter(Rules rules)
    : m_rules(rules)
{
}

std::vector<Stretch> StretchCutter::add(bool isSpeech, float energy)
{
    std::vector<Stretch> complete;
    m_position += Window;
    if (isSpeech && !m_speechFrom) {
        beginSpeech(m_position - m_rules.speechDelay, complete);
    } else if (!isSpeech && m_speechFrom) {
        endSpeech(m_position - m_rules.silenceDelay, complete);
    }
    if (m_speechFrom) {
        cutLongSpeech(energy, complete);
    } else if (m_open && m_position - m_open->end >= m_rules.joinedPause) {
        emitOpen(Never, complete);
    }
    return complete;
}

std::vector<Stretch> StretchCutter::finish(std::int64_t samples)
{
    std::vector<Stretch> complete;
    m_position = samples;
    if (m_speechFrom) {
        endSpeech(samples, complete);
    }
    emitOpen(Never, complete);
    return complete;
}

std::int64_t StretchCutter::neededFrom() const
{
    const std::int64_t spoken =
        m_open ? m_open->begin : m_speechFrom.value_or(m_position - m_rules.speechDelay);
    return std::max(m_floor, spoken - m_rules.padding);
}

void StretchCutter::beginSpeech(std::int64_t at, std::vector<Stretch> &complete)
{
    at = std::max(at, m_open ? m_open->end : m_floor);
    if (m_open && at - m_open->end >= m_rules.joinedPause) {
        emitOpen(at, complete);
    }
    m_speechFrom = at;
    m_quietest.reset();
}

void StretchCutter::endSpeech(std::int64_t at, std::vector<Stretch> &complete)
{
    const Stretch spoken = {*m_speechFrom, std::max(at, *m_speechFrom)};
    m_speechFrom.reset();
    if (m_open && spoken.end - m_open->begin > m_rules.joinedLength) {
        emitOpen(spoken.begin, complete);
    }
    m_open = m_open ? Stretch{m_open->begin, spoken.end} : spoken;
}

void StretchCutter::cutLongSpeech(float energy, std::vector<Stretch> &complete)
{
    const std::int64_t length = m_position - *m_speechFrom;
    if (length >= m_rules.joinedLength && (!m_quietest || energy < m_quietest->energy)) {
        m_quietest = Quietest{m_position - Window / 2, energy};
    }
    if (length < m_rules.longest) {
        return;
    }
    if (m_open) {
        emitOpen(*m_speechFrom, complete);
    }
    const std::int64_t cut = m_quietest->position;
    m_open = Stretch{*m_speechFrom, cut};
    emitOpen(cut, complete);
    m_speechFrom = cut;
    m_quietest.reset();
}

Stretch StretchCutter::padded(Stretch spoken, std::int64_t nextBegin) const
{
    return {std::max(m_floor, spoken.begin - m_rules.padding),
            std::min({nextBegin, spoken.end + m_rules.padding, m_position})};
}

void StretchCutter::emitOpen(std::int64_t nextBegin, std::vector<Stretch> &complete)
{
    if (!m_open) {
        return;
    }
    const Stretch whole = padded(*m_open, nextBegin);
    m_open.reset();
    m_floor = whole.end;
    complete.push_back(whole);
}

} // namespace vesk
