#include "Platform/Linux/Speech/FfmpegAacWriter.h"

#include "Foundation/Log.h"
#include "Platform/Linux/Speech/FfmpegInput.h"
#include "Platform/Linux/Speech/FfmpegLog.h"

#include <QFile>

#include <algorithm>
#include <cstdio>

extern "C" {
#include <libavutil/opt.h>
}

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// FFmpeg's own encoder and container, from which nothing but the end of memory is expected.
void require(int result, const char *what)
{
    if (result < 0) {
        Log::write(u"audio writer: %1 failed: %2"_s.arg(QLatin1StringView(what), FfmpegLog::lastError()));
        throw AudioFileError(u"The recording cannot be encoded"_s);
    }
}

/// A container that is written to the output, with one stream of the given kind.
FfmpegMuxer makeContainer(FfmpegOutput &output, const AVCodecParameters &stream)
{
    AVFormatContext *made = nullptr;
    require(avformat_alloc_output_context2(&made, nullptr, "ipod", nullptr), "the container"); // ".m4a"
    FfmpegMuxer container(made);
    container->pb = output.io();
    container->flags |= AVFMT_FLAG_CUSTOM_IO;
    AVStream *added = avformat_new_stream(container.get(), nullptr);
    if (added == nullptr) {
        throw std::bad_alloc();
    }
    require(avcodec_parameters_copy(added->codecpar, &stream), "the stream");
    added->codecpar->codec_tag = 0;
    added->time_base = {1, stream.sample_rate};
    return container;
}

/// Writes the container's beginning: for fragments, or with room for one index of so many bytes.
void beginContainer(AVFormatContext &container, std::optional<int64_t> roomForIndex)
{
    AVDictionary *options = nullptr;
    if (roomForIndex) {
        av_dict_set_int(&options, "moov_size", *roomForIndex, 0);
    } else {
        constexpr int64_t FragmentMicroseconds = 500'000;
        av_dict_set(&options, "movflags", "empty_moov+default_base_moof+skip_trailer", 0);
        av_dict_set_int(&options, "frag_duration", FragmentMicroseconds, 0);
    }
    const int result = avformat_write_header(&container, &options);
    av_dict_free(&options);
    require(result, "the header");
}

FfmpegPointer<AVFormatContext> openFragments(FfmpegInput &input)
{
    AVFormatContext *opened = avformat_alloc_context();
    if (opened == nullptr) {
        throw std::bad_alloc();
    }
    opened->pb = input.io();
    require(avformat_open_input(&opened, "", av_find_input_format("mov"), nullptr), "reading back");
    return FfmpegPointer<AVFormatContext>(opened);
}

} // namespace

FfmpegAacWriter::FfmpegAacWriter(const QString &path, const AudioFileSettings &settings)
    : m_format(settings.format)
    , m_output(path)
    , m_packet(ffmpegOwned(av_packet_alloc()))
    , m_frame(ffmpegOwned(av_frame_alloc()))
{
    openEncoder(settings.bitRate);
    openContainer();
}

FfmpegAacWriter::~FfmpegAacWriter()
{
    try {
        close();
    } catch (const std::exception &error) {
        Log::write(u"recording was not completed: "_s + describe(error));
    }
}

void FfmpegAacWriter::openEncoder(int bitRate)
{
    const AVCodec *encoder = avcodec_find_encoder(AV_CODEC_ID_AAC);
    require(encoder == nullptr ? -1 : 0, "finding the encoder");
    m_codec = ffmpegOwned(avcodec_alloc_context3(encoder));
    m_codec->sample_fmt = AV_SAMPLE_FMT_FLTP;
    m_codec->sample_rate = m_format.sampleRate;
    m_codec->bit_rate = bitRate;
    m_codec->time_base = {1, m_format.sampleRate};
    m_codec->thread_count = 1;
    m_codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    av_channel_layout_default(&m_codec->ch_layout, m_format.channels);
    require(avcodec_open2(m_codec.get(), encoder, nullptr), "the encoder");
}

void FfmpegAacWriter::openContainer()
{
    AVCodecParameters *parameters = avcodec_parameters_alloc();
    const auto freeParameters = std::unique_ptr<AVCodecParameters, void (*)(AVCodecParameters *)>(
        parameters, [](AVCodecParameters *object) { avcodec_parameters_free(&object); });
    require(parameters == nullptr ? -1 : avcodec_parameters_from_context(parameters, m_codec.get()),
            "the stream");
    m_container = makeContainer(m_output, *parameters);
    m_container->flush_packets = 1; // every fragment reaches the system when it is complete
    m_output.io()->seekable = 0;    // so that nothing written is ever touched again
    beginContainer(*m_container, std::nullopt);
    avio_flush(m_output.io());
    if (m_output.hasFailed()) {
        m_output.refuse();
    }
}

void FfmpegAacWriter::write(const AudioBlock &block)
{
    if (block.format != m_format) {
        throw AudioFileError(u"The recording cannot take sound of another format"_s);
    }
    if (m_output.hasFailed()) {
        m_output.refuse();
    }
    m_pending.insert(m_pending.end(), block.samples.begin(), block.samples.end());
    encodeWholeFrames();
    if (m_output.hasFailed()) {
        m_output.refuse();
    }
}

void FfmpegAacWriter::close()
{
    if (m_isClosed) {
        return;
    }
    m_isClosed = true;
    if (!m_output.hasFailed()) {
        if (m_encoded == 0 && m_pending.empty()) { // readers refuse a file without any sound
            m_pending.resize(static_cast<std::size_t>(m_codec->frame_size) * m_format.channels);
        }
        if (!m_pending.empty()) {
            encode(m_pending);
        }
        avcodec_send_frame(m_codec.get(), nullptr);
        takePackets();
        av_write_trailer(m_container.get());
    }
    m_container.reset(); // before the file that it writes
    m_output.close();
    makeOrdinary();
}

void FfmpegAacWriter::encodeWholeFrames()
{
    const std::size_t size = static_cast<std::size_t>(m_codec->frame_size) * m_format.channels;
    std::size_t done = 0;
    for (; m_pending.size() - done >= size; done += size) {
        encode(std::span(m_pending).subspan(done, size));
    }
    m_pending.erase(m_pending.begin(), m_pending.begin() + static_cast<std::ptrdiff_t>(done));
}

void FfmpegAacWriter::encode(std::span<const float> samples)
{
    const auto channels = static_cast<std::size_t>(m_format.channels);
    m_frame->nb_samples = static_cast<int>(samples.size() / channels);
    m_frame->format = m_codec->sample_fmt;
    m_frame->sample_rate = m_format.sampleRate;
    m_frame->pts = m_encoded;
    require(av_channel_layout_copy(&m_frame->ch_layout, &m_codec->ch_layout), "a frame");
    require(av_frame_get_buffer(m_frame.get(), 0), "a frame");
    for (std::size_t channel = 0; channel < channels; ++channel) {
        auto *plane = reinterpret_cast<float *>(m_frame->extended_data[channel]);
        for (std::size_t i = channel; i < samples.size(); i += channels) {
            const float sample = samples[i];
            *plane++ = sample >= -1 && sample <= 1 ? sample : sample > 1 ? 1.0F : sample < -1 ? -1.0F : 0.0F;
        }
    }
    m_encoded += m_frame->nb_samples;
    const int result = avcodec_send_frame(m_codec.get(), m_frame.get());
    av_frame_unref(m_frame.get());
    require(result, "encoding");
    takePackets();
}

void FfmpegAacWriter::takePackets()
{
    while (avcodec_receive_packet(m_codec.get(), m_packet.get()) == 0) {
        m_packet->stream_index = 0;
        m_packet->duration = m_codec->frame_size; // the encoder leaves it out of the first and the last one
        av_packet_rescale_ts(m_packet.get(), m_codec->time_base, m_container->streams[0]->time_base);
        av_write_frame(m_container.get(), m_packet.get()); // a failure is the output's, which keeps it
        av_packet_unref(m_packet.get());
        ++m_packets;
    }
}

/// What the fragments hold, into the ordinary file; how many packets. Throws when they cannot be read to the
/// end.
int64_t FfmpegAacWriter::copyPackets(AVFormatContext &fragments, AVFormatContext &container) const
{
    const AVRational from = fragments.streams[0]->time_base;
    const AVRational to = container.streams[0]->time_base;
    const FfmpegPointer<AVPacket> packet = ffmpegOwned(av_packet_alloc());
    int64_t copied = 0;
    int result = av_read_frame(&fragments, packet.get());
    for (; result >= 0; result = av_read_frame(&fragments, packet.get())) {
        packet->duration = m_codec->frame_size;
        av_packet_rescale_ts(packet.get(), from, to);
        // The encoder begins with silence that no recording has; the index says so.
        packet->pts -= m_codec->initial_padding;
        packet->dts -= m_codec->initial_padding;
        packet->pos = -1;
        require(av_write_frame(&container, packet.get()), "copying");
        av_packet_unref(packet.get());
        ++copied;
    }
    require(result == AVERROR_EOF ? 0 : result, "reading back");
    return copied;
}

/// The same packets under one index. The fragments stay if that fails: they can be read as well.
void FfmpegAacWriter::makeOrdinary() const
{
    const QString part = m_output.path() + u".part"_s;
    try {
        FfmpegInput input(m_output.path());
        const auto fragments = openFragments(input);
        FfmpegOutput output(part);
        const FfmpegMuxer container = makeContainer(output, *fragments->streams[0]->codecpar);
        constexpr int64_t IndexWithoutPackets = 1536; // half of it is used
        constexpr int64_t IndexOfPacket = 8;          // its size, and its share of the chunks' places
        beginContainer(*container, IndexWithoutPackets + IndexOfPacket * m_packets);
        const int64_t copied = copyPackets(*fragments, *container);
        input.check(); // FFmpeg takes what the system cannot read for the end
        if (copied != m_packets) {
            throw AudioFileError(u"The recording cannot be read back whole"_s);
        }
        require(av_write_trailer(container.get()), "the index");
        output.close();
        if (std::rename(QFile::encodeName(part).constData(), QFile::encodeName(m_output.path()).constData())
            != 0) {
            throw AudioFileError(u"The recording cannot be renamed"_s);
        }
    } catch (const std::exception &error) {
        Log::write(u"recording stays in fragments: "_s + describe(error));
        QFile::remove(part);
    }
}

} // namespace vesk
