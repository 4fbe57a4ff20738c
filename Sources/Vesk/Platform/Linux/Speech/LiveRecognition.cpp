#include "Platform/Linux/Speech/LiveRecognition.h"

#include "Foundation/ThreadName.h"
#include "Platform/Linux/Speech/HeardSound.h"
#include "Platform/Linux/Speech/VoiceActivity.h"

#include <utility>

namespace vesk {

LiveRecognition::LiveRecognition(AudioConverters &converters, QString voiceActivityModel,
                                 std::shared_ptr<LiveDecoding> decoding)
    : m_converters(converters)
    , m_voiceActivityModel(std::move(voiceActivityModel))
    , m_decoding(std::move(decoding))
    , m_thread([this] { listen(); })
{
}

LiveRecognition::~LiveRecognition()
{
    m_decoding->abandon();
    finish();
    m_thread.join();
}

void LiveRecognition::feed(AudioBlock block)
{
    const std::lock_guard lock(m_mutex);
    if (!m_isEnding) {
        m_blocks.push_back(std::move(block));
        m_changed.notify_one();
    }
}

void LiveRecognition::finish()
{
    const std::lock_guard lock(m_mutex);
    m_isEnding = true;
    m_changed.notify_one();
}

void LiveRecognition::listen()
{
    setCurrentThreadName("vesk.listen");
    HeardSound sound(m_converters);
    std::exception_ptr failure;
    try {
        listenToAll(sound);
    } catch (...) {
        failure = std::current_exception();
    }
    const auto length = static_cast<double>(sound.total()) / LiveStretches::SampleRate;
    m_decoding->end(AudioDuration(length), failure);
    const std::lock_guard lock(m_mutex);
    m_isEnding = true; // after a failure nobody would take the blocks away
    m_blocks.clear();
}

void LiveRecognition::listenToAll(HeardSound &sound)
{
    VoiceActivity voiceActivity(m_voiceActivityModel, VoiceActivity::Live);
    LiveStretches stretches;
    const auto take = [&](const std::optional<LiveStep> &step) {
        if (step) {
            m_decoding->add(
                *step, m_decoding->needsSamples(*step) ? sound.samples(step->stretch) : std::vector<float>());
        }
    };
    const auto examine = [&] {
        while (const auto window = sound.nextWindow()) {
            take(stretches.add(voiceActivity.isSpeech(*window), energyOf(*window)));
        }
        sound.forgetBefore(stretches.neededFrom());
    };
    for (auto blocks = nextBlocks(); !blocks.empty(); blocks = nextBlocks()) {
        for (; !blocks.empty() && !m_decoding->isOver(); blocks.pop_front()) {
            sound.add(blocks.front());
            examine();
        }
    }
    sound.flush();
    examine();
    take(stretches.finish(sound.total()));
}

/// Waits for blocks; none at the end.
std::deque<AudioBlock> LiveRecognition::nextBlocks()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_isEnding || !m_blocks.empty(); });
    return std::exchange(m_blocks, {});
}

} // namespace vesk
