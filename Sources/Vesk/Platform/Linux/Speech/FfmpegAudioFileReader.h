#pragma once

#include "Platform/AudioFiles.h"
#include "Platform/Linux/Speech/DecodingRecord.h"
#include "Platform/Linux/Speech/FfmpegAudioConverter.h"
#include "Platform/Linux/Speech/FfmpegFloatSamples.h"
#include "Platform/Linux/Speech/FfmpegInput.h"

namespace vesk {

/// An opened container and which of its streams is heard.
struct FfmpegSoundStream {
    std::unique_ptr<FfmpegInput> input;
    FfmpegPointer<AVFormatContext> file; ///< after the input, which it reads until its end
    AVStream *stream = nullptr;
    const AVCodec *decoder = nullptr;
    std::optional<AudioDuration> duration;  ///< what the person may be told
    std::optional<AudioDuration> announced; ///< what the stream's own header says, to be measured against
};

/// Decodes one stream of a file. What is damaged is passed over and remembered for shortfall(); the first
/// sound that decodes decides the format, and later sound is converted to it.
class FfmpegAudioFileReader final : public AudioFileReader {
public:
    /// Decodes up to the first sound. Throws AudioFileError when there is none.
    explicit FfmpegAudioFileReader(FfmpegSoundStream sound);

    const AudioFormat &format() const override { return m_format; }
    std::optional<AudioDuration> duration() const override { return m_sound.duration; }
    std::optional<AudioBlock> read() override;
    std::optional<QString> shortfall() const override;

private:
    bool decodeMore();
    void sendNextPacket();
    bool sendPacketOfStream();
    void take(const AVFrame &frame);
    void append(AudioBlock block);
    void flushConverter();

    FfmpegSoundStream m_sound;
    FfmpegPointer<AVCodecContext> m_codec;
    FfmpegPointer<AVPacket> m_packet;
    FfmpegPointer<AVFrame> m_frame;
    FfmpegFloatSamples m_samples;
    FfmpegAudioConverters m_converters;
    std::unique_ptr<AudioConverter> m_converter; ///< while the stream's format is not the first one

    AudioFormat m_format;
    AudioBlock m_pending; ///< decoded and not handed out
    bool m_isAtEnd = false;
    DecodingRecord m_record;
};

} // namespace vesk
