#include "Platform/Linux/Speech/StretchReader.h"

namespace vesk {

StretchReader::StretchReader(AudioConverters &converters, VoiceActivity &voiceActivity, Handler onStretch)
    : m_voiceActivity(voiceActivity)
    , m_onStretch(std::move(onStretch))
    , m_sound(converters)
{
}

void StretchReader::add(const AudioBlock &block)
{
    m_sound.add(block);
    examine();
}

void StretchReader::finish()
{
    m_sound.flush();
    examine();
    give(m_cutter.finish(m_sound.total()));
}

void StretchReader::examine()
{
    while (const auto window = m_sound.nextWindow()) {
        give(m_cutter.add(m_voiceActivity.isSpeech(*window), energyOf(*window)));
    }
    m_sound.forgetBefore(m_cutter.neededFrom());
}

void StretchReader::give(const std::vector<Stretch> &stretches)
{
    for (const Stretch &stretch : stretches) {
        m_onStretch(stretch, m_sound.samples(stretch));
    }
}

} // namespace vesk
