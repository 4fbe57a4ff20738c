#pragma once

#include "Platform/AudioBlock.h"

#include <QDataStream>
#include <QFile>

#include <algorithm>
#include <cmath>

namespace vesk::test {

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
