#include "Platform/Linux/Speech/FfmpegAudioConverter.h"

#include "Platform/Linux/Speech/FfmpegLog.h"
#include "Platform/Linux/Speech/FfmpegPointers.h"

#include <algorithm>
#include <limits>

namespace vesk {

namespace {

// What libswresample can mix, and the rates between which its filter keeps a reasonable length: below is no
// sound, above no device.
constexpr int MostChannels = 64;
constexpr int LowestRate = 1'000;
constexpr int HighestRate = 768'000;

bool isPossible(const AudioFormat &format)
{
    return format.channels >= 1 && format.channels <= MostChannels && format.sampleRate >= LowestRate
        && format.sampleRate <= HighestRate;
}

/// Null when the library refuses.
FfmpegPointer<SwrContext> makeContext(const AudioFormat &from, const AudioFormat &to)
{
    auto context = allocateConversion(AV_SAMPLE_FMT_FLT, from, to);
    if (!context) {
        return nullptr;
    }
    if (from.channels != to.channels) {
        // The average cannot clip, whatever the channels have in common, and a voice on one of them is never
        // weaker than its share. The library's own matrix follows loudspeaker positions: it leaves out the
        // low-frequency channel and guesses positions that a recorder with eight inputs does not have.
        const std::vector<double> average(static_cast<std::size_t>(from.channels) * to.channels,
                                          1.0 / from.channels);
        if (swr_set_matrix(context.get(), average.data(), from.channels) < 0) {
            return nullptr;
        }
    }
    return swr_init(context.get()) < 0 ? nullptr : std::move(context);
}

class FfmpegAudioConverter final : public AudioConverter {
public:
    FfmpegAudioConverter(FfmpegPointer<SwrContext> context, const AudioFormat &from, const AudioFormat &to)
        : m_context(std::move(context))
        , m_from(from)
        , m_to(to)
    {
    }

    const AudioFormat &inputFormat() const override { return m_from; }

    AudioBlock convert(const AudioBlock &block, qsizetype capacity) override
    {
        if (block.format != m_from || block.frames() == 0 || block.frames() > MostFrames) {
            return {m_to, {}};
        }
        const auto *samples = reinterpret_cast<const uint8_t *>(block.samples.data());
        return run(samples, static_cast<int>(block.frames()), capacity);
    }

    AudioBlock flush() override
    {
        AudioBlock all = {m_to, {}};
        while (true) {
            const AudioBlock some = run(nullptr, 0, swr_get_out_samples(m_context.get(), 0));
            if (some.frames() == 0) {
                return all;
            }
            all.samples.insert(all.samples.end(), some.samples.begin(), some.samples.end());
        }
    }

private:
    static constexpr qsizetype MostFrames = std::numeric_limits<int>::max() / MostChannels;

    /// Without samples: what is left at the end of the sound.
    AudioBlock run(const uint8_t *samples, int frames, qsizetype capacity)
    {
        // What can come out bounds the memory, however much the caller would take.
        const int expected = swr_get_out_samples(m_context.get(), frames);
        const int room = static_cast<int>(std::clamp<qsizetype>(capacity, 0, std::max(expected, 0)));
        AudioBlock out = {m_to, std::vector<float>(static_cast<std::size_t>(room) * m_to.channels)};
        auto *target = reinterpret_cast<uint8_t *>(out.samples.data());
        const int written =
            swr_convert(m_context.get(), &target, room, samples == nullptr ? nullptr : &samples, frames);
        out.samples.resize(static_cast<std::size_t>(std::max(written, 0)) * m_to.channels);
        return out;
    }

    FfmpegPointer<SwrContext> m_context;
    AudioFormat m_from;
    AudioFormat m_to;
};

} // namespace

FfmpegAudioConverters::FfmpegAudioConverters() { FfmpegLog::silence(); }

std::unique_ptr<AudioConverter> FfmpegAudioConverters::make(const AudioFormat &from, const AudioFormat &to)
{
    if (!isPossible(from) || !isPossible(to)) {
        return nullptr;
    }
    auto context = makeContext(from, to);
    return context ? std::make_unique<FfmpegAudioConverter>(std::move(context), from, to) : nullptr;
}

} // namespace vesk
