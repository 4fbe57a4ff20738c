#pragma once

#include "Platform/AudioConverter.h"

#include <algorithm>
#include <utility>

namespace vesk::test {

/// Converters without a filter: straight lines between the samples, the average of the channels. Exact for
/// steady sound and quick to follow by hand; what lies above half of the new rate folds down.
class FakeAudioConverters final : public AudioConverters {
public:
    /// What was asked for, in order.
    std::vector<std::pair<AudioFormat, AudioFormat>> made;

    std::unique_ptr<AudioConverter> make(const AudioFormat &from, const AudioFormat &to) override
    {
        made.emplace_back(from, to);
        if (!from.isUsable() || !to.isUsable()) {
            return nullptr;
        }
        return std::make_unique<Converter>(from, to);
    }

private:
    class Converter final : public AudioConverter {
    public:
        Converter(const AudioFormat &from, const AudioFormat &to)
            : m_from(from)
            , m_to(to)
        {
        }

        const AudioFormat &inputFormat() const override { return m_from; }

        AudioBlock convert(const AudioBlock &block, qsizetype capacity) override
        {
            if (block.format != m_from || block.frames() == 0) {
                return {m_to, {}};
            }
            m_input.insert(m_input.end(), block.samples.begin(), block.samples.end());
            return takeFrames(capacity);
        }

        AudioBlock flush() override
        {
            // The last sample lasts until the end.
            const auto channels = static_cast<std::size_t>(m_from.channels);
            const std::vector<float> last(
                m_input.end() - static_cast<qsizetype>(std::min(channels, m_input.size())), m_input.end());
            m_input.insert(m_input.end(), last.begin(), last.end());
            const AudioBlock rest = takeFrames(static_cast<qsizetype>(m_input.size()) * m_to.sampleRate);
            m_input.clear();
            return rest;
        }

    private:
        AudioBlock takeFrames(qsizetype capacity)
        {
            AudioBlock out = {m_to, {}};
            const double step = static_cast<double>(m_from.sampleRate) / m_to.sampleRate;
            const auto frames = static_cast<double>(m_input.size()) / m_from.channels;
            for (; out.frames() < capacity && m_position + 1 < frames; m_position += step) {
                const auto before = static_cast<std::size_t>(m_position);
                const auto share = static_cast<float>(m_position - static_cast<double>(before));
                for (int channel = 0; channel < m_to.channels; ++channel) {
                    out.samples.push_back((1 - share) * at(before, channel)
                                          + share * at(before + 1, channel));
                }
            }
            const auto used =
                std::min(static_cast<std::size_t>(m_position), m_input.size() / m_from.channels);
            m_input.erase(m_input.begin(), m_input.begin() + static_cast<qsizetype>(used) * m_from.channels);
            m_position -= static_cast<double>(used);
            return out;
        }

        float at(std::size_t frame, int channel) const
        {
            const float *samples = m_input.data() + frame * static_cast<std::size_t>(m_from.channels);
            if (m_from.channels == m_to.channels) {
                return samples[channel];
            }
            float sum = 0;
            for (int i = 0; i < m_from.channels; ++i) {
                sum += samples[i];
            }
            return sum / static_cast<float>(m_from.channels);
        }

        AudioFormat m_from;
        AudioFormat m_to;
        std::vector<float> m_input; ///< from the frame before the next one that comes out
        double m_position = 0;      ///< of the next one, in frames of the input
    };
};

} // namespace vesk::test
