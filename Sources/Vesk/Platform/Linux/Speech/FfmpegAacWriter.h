#pragma once

#include "Platform/AudioFiles.h"
#include "Platform/Linux/Speech/FfmpegOutput.h"

#include <span>

namespace vesk {

/// Writes AAC in MPEG-4. While sound comes the file is made of fragments of half a second, each of which is
/// readable as soon as it is written. At the end it becomes an ordinary file with one index at its beginning,
/// which every server reads, also from a pipe.
class FfmpegAacWriter final : public AudioFileWriter {
public:
    /// Throws AudioFileError.
    FfmpegAacWriter(const QString &path, const AudioFileSettings &settings);
    ~FfmpegAacWriter() override;

    const AudioFormat &processingFormat() const override { return m_format; }
    void write(const AudioBlock &block) override;
    void close() override;

private:
    void openEncoder(int bitRate);
    void openContainer();
    void encodeWholeFrames();
    void encode(std::span<const float> samples);
    void takePackets();
    int64_t copyPackets(AVFormatContext &fragments, AVFormatContext &container) const;
    void makeOrdinary() const;

    const AudioFormat m_format;
    FfmpegOutput m_output;
    FfmpegPointer<AVCodecContext> m_codec;
    FfmpegMuxer m_container;
    FfmpegPointer<AVPacket> m_packet;
    FfmpegPointer<AVFrame> m_frame;
    std::vector<float> m_pending; ///< not yet a whole frame of the encoder's
    int64_t m_encoded = 0;        ///< frames of sound
    int64_t m_packets = 0;
    bool m_isClosed = false;
};

} // namespace vesk
