#pragma once

#include "Foundation/Files.h"
#include "Platform/AudioFiles.h"
#include "Platform/Linux/Speech/FfmpegAudioFiles.h"
#include "Support/TemporaryHome.h"
#include "Support/Tones.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace vesk::test {

using namespace Qt::StringLiterals;

/// What reading a whole file gave.
struct ReadSound {
    AudioBlock sound;            ///< all blocks
    qsizetype smallestBlock = 0; ///< but the last
    std::optional<AudioDuration> duration;
    std::optional<QString> shortfall;

    double seconds() const
    {
        return static_cast<double>(sound.frames()) / std::max(1, sound.format.sampleRate);
    }
};

/// A sentence that a failed expectation can print; empty when there is none.
inline std::string text(const std::optional<QString> &sentence)
{
    return sentence.value_or(QString()).toStdString();
}

/// Sound files made by the `ffmpeg` program in a folder of the test's own, and the reader under test.
class SoundFixtures : public testing::Test {
protected:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    /// Fails the test when the program is missing or refuses.
    void ffmpeg(QStringList arguments, const QString &output)
    {
        runTool(u"ffmpeg"_s,
                QStringList{u"-loglevel"_s, u"error"_s, u"-y"_s, u"-nostdin"_s} + arguments
                    << u"file:"_s + path(output));
    }

    /// A tone a channel: 500 Hz at 0.5 on the left, 800 Hz at 0.25 on the right.
    void makeTones(const QString &output, const QString &options = {}, int seconds = 3)
    {
        const QString tones =
            u"aevalsrc=0.5*sin(2*PI*500*t)|0.25*sin(2*PI*800*t):s=44100:d=%1"_s.arg(seconds);
        QStringList arguments = {u"-f"_s, u"lavfi"_s, u"-i"_s, tones};
        ffmpeg(arguments + options.split(u' ', Qt::SkipEmptyParts), output);
    }

    QByteArray content(const QString &name) const { return Files::read(path(name)); }
    void write(const QString &name, const QByteArray &bytes) const { Files::replace(path(name), bytes); }

    ReadSound read(const QString &name)
    {
        const auto reader = m_files.openForReading(path(name));
        qsizetype last = std::numeric_limits<qsizetype>::max();
        ReadSound result = {{reader->format(), {}}, last, reader->duration(), {}};
        while (const auto block = reader->read()) {
            EXPECT_EQ(block->format, reader->format());
            EXPECT_GT(block->frames(), 0);
            result.smallestBlock = std::min(result.smallestBlock, last);
            last = block->frames();
            append(result.sound, *block);
        }
        EXPECT_FALSE(reader->read()) << "the end stays the end";
        result.shortfall = reader->shortfall();
        return result;
    }

    /// The sentence with which a file is refused, at opening or while it is read.
    std::string refusal(const QString &name)
    {
        try {
            read(name);
        } catch (const AudioFileError &error) {
            return text(error.errorDescription());
        }
        return "not refused";
    }

    FfmpegAudioFiles m_files;

private:
    QTemporaryDir m_folder;
};

} // namespace vesk::test
