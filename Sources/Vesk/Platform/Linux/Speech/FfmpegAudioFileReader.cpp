#include "Platform/Linux/Speech/FfmpegAudioFileReader.h"

#include "Foundation/Log.h"
#include "Platform/Linux/Speech/FfmpegLog.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// Large enough that handing blocks over costs nothing beside decoding, small beside an hour of sound.
constexpr qsizetype BlockFrames = 4096;

/// A demuxer that fails this often without a packet in between will not find its way again.
constexpr int MostReadFailures = 64;

AudioDuration inSeconds(int64_t time, AVRational unit)
{
    return AudioDuration(static_cast<double>(time) * av_q2d(unit));
}

FfmpegPointer<AVCodecContext> openDecoder(const FfmpegSoundStream &sound)
{
    auto codec = ffmpegOwned(avcodec_alloc_context3(sound.decoder));
    codec->thread_count = 1; // sound decodes far faster than it is recognised, and errors stay on this thread
    codec->pkt_timebase = sound.stream->time_base;
    // Lossless formats carry checksums, and a stretch that fails them may be loud noise. In others a wrong
    // checksum more often is the encoder's mistake.
    const AVCodecDescriptor *kind = avcodec_descriptor_get(sound.stream->codecpar->codec_id);
    if (kind != nullptr && (kind->props & AV_CODEC_PROP_LOSSLESS) != 0) {
        codec->err_recognition = AV_EF_CRCCHECK | AV_EF_EXPLODE;
    }
    if (avcodec_parameters_to_context(codec.get(), sound.stream->codecpar) < 0
        || avcodec_open2(codec.get(), sound.decoder, nullptr) < 0) {
        Log::write(u"audio decoder refused: "_s + FfmpegLog::lastError());
        throw AudioFileError(u"The sound in %1 is of a kind that cannot be read"_s.arg(sound.input->name()));
    }
    return codec;
}

} // namespace

FfmpegAudioFileReader::FfmpegAudioFileReader(FfmpegSoundStream sound)
    : m_sound(std::move(sound))
    , m_codec(openDecoder(m_sound))
    , m_packet(ffmpegOwned(av_packet_alloc()))
    , m_frame(ffmpegOwned(av_frame_alloc()))
{
    while (m_pending.frames() == 0 && decodeMore()) {}
    if (m_pending.frames() == 0) {
        Log::write(u"audio file without sound: "_s + FfmpegLog::lastError());
        throw AudioFileError((m_record.hasLosses() ? u"%1 is damaged: none of its sound could be decoded"_s
                                                   : u"%1 has no sound in it"_s)
                                 .arg(m_sound.input->name()));
    }
}

std::optional<AudioBlock> FfmpegAudioFileReader::read()
{
    while (m_pending.frames() < BlockFrames && decodeMore()) {}
    if (m_pending.frames() == 0) {
        return std::nullopt;
    }
    return std::exchange(m_pending, AudioBlock{m_format, {}});
}

/// One step; false at the end.
bool FfmpegAudioFileReader::decodeMore()
{
    if (m_isAtEnd) {
        return false;
    }
    FfmpegLog::takeComplaint(); // another file's, read by this thread
    const int result = avcodec_receive_frame(m_codec.get(), m_frame.get());
    if (result == 0) {
        take(*m_frame);
    } else if (result == AVERROR(EAGAIN)) {
        sendNextPacket();
    } else if (result == AVERROR_EOF) {
        flushConverter();
        m_isAtEnd = true;
    } else {
        m_record.noteLoss();
    }
    if (FfmpegLog::takeComplaint()) {
        m_record.noteComplaint();
    }
    return true;
}

void FfmpegAudioFileReader::sendNextPacket()
{
    int result = 0;
    for (int failures = 0; failures < MostReadFailures && result != AVERROR_EOF; ++failures) {
        result = av_read_frame(m_sound.file.get(), m_packet.get());
        m_sound.input->check();
        if (result >= 0) {
            if (sendPacketOfStream()) {
                return;
            }
            failures = -1;
        } else if (result != AVERROR_EOF) {
            m_record.noteLoss();
        }
    }
    if (result != AVERROR_EOF && avio_feof(m_sound.input->io()) == 0) {
        m_record.noteGivingUp();
    }
    avcodec_send_packet(m_codec.get(), nullptr); // from now on the decoder gives what it still holds
}

/// False when the packet belongs to another stream.
bool FfmpegAudioFileReader::sendPacketOfStream()
{
    const bool isOurs = m_packet->stream_index == m_sound.stream->index;
    if (isOurs) {
        if (av_packet_get_side_data(m_packet.get(), AV_PKT_DATA_ENCRYPTION_INFO, nullptr) != nullptr) {
            throw AudioFileError(
                u"%1 is copy-protected, so its sound cannot be read"_s.arg(m_sound.input->name()));
        }
        if (avcodec_send_packet(m_codec.get(), m_packet.get()) < 0) {
            m_record.noteLoss();
        }
    }
    av_packet_unref(m_packet.get());
    return isOurs;
}

void FfmpegAudioFileReader::take(const AVFrame &frame)
{
    AudioBlock block = m_samples.from(frame);
    if (block.frames() == 0) {
        m_record.noteLoss();
        return;
    }
    const bool hasTime = frame.best_effort_timestamp != AV_NOPTS_VALUE;
    m_record.noteSound(hasTime
                           ? std::optional(inSeconds(frame.best_effort_timestamp, m_sound.stream->time_base))
                           : std::nullopt,
                       AudioDuration(static_cast<double>(frame.nb_samples) / frame.sample_rate),
                       (frame.flags & AV_FRAME_FLAG_CORRUPT) != 0);
    if (!m_format.isUsable()) {
        m_format = block.format;
        m_pending.format = m_format;
    }
    append(std::move(block));
}

void FfmpegAudioFileReader::append(AudioBlock block)
{
    if (m_converter && m_converter->inputFormat() != block.format) {
        flushConverter();
    }
    if (block.format != m_format) {
        if (!m_converter) {
            m_converter = m_converters.make(block.format, m_format);
        }
        if (!m_converter) {
            m_record.noteLoss();
            return;
        }
        block = m_converter->convert(block, std::numeric_limits<int>::max());
    }
    m_pending.samples.insert(m_pending.samples.end(), block.samples.begin(), block.samples.end());
}

void FfmpegAudioFileReader::flushConverter()
{
    if (m_converter) {
        const AudioBlock rest = m_converter->flush();
        m_pending.samples.insert(m_pending.samples.end(), rest.samples.begin(), rest.samples.end());
        m_converter.reset();
    }
}

std::optional<QString> FfmpegAudioFileReader::shortfall() const
{
    return m_isAtEnd ? m_record.shortfall(m_sound.input->name(), m_sound.announced, m_sound.duration)
                     : std::nullopt;
}

} // namespace vesk
