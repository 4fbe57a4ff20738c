#include "Platform/Linux/Speech/FfmpegAnnouncements.h"

#include <algorithm>
#include <functional>
#include <span>
#include <string_view>

namespace vesk {

namespace {

std::optional<AudioDuration> positive(int64_t time, AVRational unit)
{
    if (time == AV_NOPTS_VALUE || time <= 0) {
        return std::nullopt;
    }
    return AudioDuration(static_cast<double>(time) * av_q2d(unit));
}

/// The size of a WAV file's sound as its header has it. FFmpeg drops it when the file is shorter, which is
/// the case that matters.
std::optional<uint32_t> wavDataSize(AVIOContext *io)
{
    constexpr int64_t FirstChunk = 12;
    const int64_t before = avio_tell(io);
    std::optional<uint32_t> found;
    avio_seek(io, FirstChunk, SEEK_SET);
    while (!found && avio_feof(io) == 0) {
        const uint32_t tag = avio_rl32(io);
        const uint32_t size = avio_rl32(io);
        if (tag == MKTAG('d', 'a', 't', 'a')) {
            found = size;
        }
        avio_skip(io, int64_t(size) + size % 2);
    }
    avio_seek(io, before, SEEK_SET);
    return found;
}

/// Nothing when the program that wrote the file did not know: then it left 0 or one of several numbers close
/// to what 31 or 32 bits can hold.
std::optional<AudioDuration> ofWav(AVIOContext *io, const AVCodecParameters &sound)
{
    constexpr uint32_t LargestBelievable = 0x7FFF'0000;
    const std::optional<uint32_t> size = wavDataSize(io);
    const int bitsPerSample = av_get_bits_per_sample(sound.codec_id);
    const int64_t bitRate = bitsPerSample > 0
        ? int64_t(bitsPerSample) * sound.ch_layout.nb_channels * sound.sample_rate
        : sound.bit_rate;
    if (!size || *size == 0 || *size >= LargestBelievable || bitRate <= 0) {
        return std::nullopt;
    }
    return AudioDuration(8.0 * *size / static_cast<double>(bitRate));
}

/// For a file that holds nothing but this stream, apart from a title picture.
std::optional<AudioDuration> ofOnlyStream(const AVFormatContext &file, const AVStream &stream)
{
    const std::string_view container = file.iformat->name;
    if (container == "wav") {
        return ofWav(file.pb, *stream.codecpar);
    }
    if (container == "caf") { // uncompressed sound, one frame a sample
        return positive(stream.nb_frames, {1, stream.codecpar->sample_rate});
    }
    return positive(file.duration, AV_TIME_BASE_Q);
}

} // namespace

FfmpegAnnouncements::FfmpegAnnouncements(const AVFormatContext &file)
{
    const auto streams = std::span(file.streams, file.nb_streams);
    const auto isPicture = [](const AVStream *stream) {
        return (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
    };
    const bool isAlone = std::count_if(streams.begin(), streams.end(), std::not_fn(isPicture)) == 1;
    const bool areStreamsAlike = file.iformat->name == std::string_view("asf"); // all say the file's length
    for (const AVStream *stream : streams) {
        std::optional<AudioDuration> announced;
        if (isAlone || !areStreamsAlike) {
            announced = positive(stream->duration, stream->time_base);
        }
        if (!announced && isAlone && !isPicture(stream)) {
            announced = ofOnlyStream(file, *stream);
        }
        m_ofStreams.push_back(announced);
    }
}

std::optional<AudioDuration> FfmpegAnnouncements::of(const AVStream &stream) const
{
    const auto index = static_cast<std::size_t>(stream.index);
    return index < m_ofStreams.size() ? m_ofStreams[index] : std::nullopt; // some streams show later
}

std::optional<AudioDuration> ffmpegDuration(const AVFormatContext &file, const AVStream &stream,
                                            std::optional<AudioDuration> announced)
{
    if (announced || file.duration_estimation_method == AVFMT_DURATION_FROM_BITRATE) {
        return announced;
    }
    const auto ofStream = positive(stream.duration, stream.time_base);
    return ofStream ? ofStream : positive(file.duration, AV_TIME_BASE_Q);
}

} // namespace vesk
