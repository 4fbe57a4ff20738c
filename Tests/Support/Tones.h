#pragma once

#include "Platform/AudioBlock.h"

#include <QDataStream>
#include <QFile>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

/// Sounds whose content can be told afterwards: tones, and how strong a tone is in what came out.
namespace vesk::test {

/// The same tone in every channel.
inline AudioBlock tone(const AudioFormat &format, double frequency, qsizetype frames, double amplitude = 0.5)
{
    AudioBlock block = {format, {}};
    for (qsizetype i = 0; i < frames; ++i) {
        const double phase = 2 * std::numbers::pi * frequency * static_cast<double>(i) / format.sampleRate;
        block.samples.insert(block.samples.end(), static_cast<std::size_t>(format.channels),
                             static_cast<float>(amplitude * std::sin(phase)));
    }
    return block;
}

/// The frames from `first` on, `count` at most.
inline AudioBlock part(const AudioBlock &block, qsizetype first, qsizetype count)
{
    const qsizetype end = std::min(block.frames(), first + count);
    return {block.format,
            {block.samples.begin() + first * block.format.channels,
             block.samples.begin() + end * block.format.channels}};
}

inline void append(AudioBlock &block, const AudioBlock &more)
{
    block.samples.insert(block.samples.end(), more.samples.begin(), more.samples.end());
}

/// The amplitude of one frequency in one channel, over the whole block. A window keeps other frequencies and
/// the block's ends out of it.
inline double amplitudeAt(const AudioBlock &block, double frequency, int channel = 0)
{
    std::complex<double> sum = 0;
    double weights = 0;
    const auto frames = static_cast<double>(block.frames());
    for (qsizetype i = 0; i < block.frames(); ++i) {
        const double at = static_cast<double>(i);
        const double window = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * (at + 0.5) / frames);
        const double sample = block.samples[static_cast<std::size_t>(i * block.format.channels + channel)];
        sum += window * sample
            * std::polar(1.0, -2 * std::numbers::pi * frequency * at / block.format.sampleRate);
        weights += window;
    }
    return weights > 0 ? 2 * std::abs(sum) / weights : 0;
}

inline double decibels(double ratio) { return 20 * std::log10(std::max(ratio, 1e-12)); }

inline float peak(const AudioBlock &block)
{
    float highest = 0;
    for (const float sample : block.samples) {
        highest = std::max(highest, std::abs(sample));
    }
    return highest;
}

/// Writes the sound as a WAV file of 16-bit samples. False when the file cannot be written.
inline bool writeWav(const QString &path, const AudioBlock &sound)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    QDataStream out(&file);
    out.setByteOrder(QDataStream::LittleEndian);
    const auto bytes = static_cast<quint32>(sound.samples.size() * 2);
    const auto channels = static_cast<quint16>(sound.format.channels);
    const auto rate = static_cast<quint32>(sound.format.sampleRate);
    out.writeRawData("RIFF", 4);
    out << quint32(36 + bytes);
    out.writeRawData("WAVEfmt ", 8);
    out << quint32(16) << quint16(1) << channels << rate << quint32(rate * channels * 2)
        << quint16(channels * 2) << quint16(16);
    out.writeRawData("data", 4);
    out << bytes;
    for (const float sample : sound.samples) {
        out << static_cast<qint16>(std::lround(std::clamp(sample, -1.0F, 1.0F) * 32'767));
    }
    return out.status() == QDataStream::Ok && file.flush();
}

} // namespace vesk::test
