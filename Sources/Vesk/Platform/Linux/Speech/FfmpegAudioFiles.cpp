#include "Platform/Linux/Speech/FfmpegAudioFiles.h"

#include "Foundation/Log.h"
#include "Platform/Linux/Speech/FfmpegAacWriter.h"
#include "Platform/Linux/Speech/FfmpegAnnouncements.h"
#include "Platform/Linux/Speech/FfmpegAudioFileReader.h"
#include "Platform/Linux/Speech/FfmpegLog.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

extern "C" {
#include <libavutil/avstring.h>
}

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

// Containers that hold their sound themselves. Everything else that FFmpeg knows stays out: playlists and
// scripts, which open other files, pictures, subtitles, games, and what has no mark to be recognised by.
constexpr char KnownContainers[] = "wav,w64,aiff,caf,au,voc,sox,mov,mp3,aac,ac3,eac3,flac,ogg,matroska,avi,"
                                   "asf,flv,amr,mpegts,mpeg,wv,ape,tta";

int refuseToOpen(AVFormatContext *, AVIOContext **, const char *, int, AVDictionary **)
{
    Log::write(u"audio file refers to another file, which stays closed"_s);
    return AVERROR(EACCES);
}

/// The names of all decoders of sound, so that nothing else, such as a video decoder, ever runs.
const QByteArray &soundDecoders()
{
    static const QByteArray names = [] {
        QByteArrayList list;
        void *position = nullptr;
        while (const AVCodec *codec = av_codec_iterate(&position)) {
            if (av_codec_is_decoder(codec) != 0 && codec->type == AVMEDIA_TYPE_AUDIO) {
                list.append(codec->name);
            }
        }
        return list.join(',');
    }();
    return names;
}

/// Refuses what could not be understood, with a sentence about the file's name; a failing disk is the better
/// reason if there was one.
[[noreturn]] void refuse(const FfmpegInput &input, const QString &sentence)
{
    input.check();
    const AudioFileError error(sentence.arg(input.name()));
    Log::write(u"audio file refused: "_s + error.errorDescription() + u"; "_s + FfmpegLog::lastError());
    throw error;
}

QString notSound() { return u"%1 is not a sound file of a kind that can be read"_s; }

const AVInputFormat *recogniseContainer(FfmpegInput &input, const QString &path)
{
    // Only content decides. The exception: behind a title picture of more than a megabyte no content is
    // looked at, and then a name of our making carries the ending over.
    QByteArray hint;
    std::array<unsigned char, 3> start = {};
    if (avio_read(input.io(), start.data(), start.size()) == 3 && std::memcmp(start.data(), "ID3", 3) == 0) {
        hint = "sound." + QFileInfo(path).suffix().toLatin1();
    }
    avio_seek(input.io(), 0, SEEK_SET);
    const AVInputFormat *container = nullptr;
    if (av_probe_input_buffer2(input.io(), &container, hint.constData(), nullptr, 0, 0) < 0
        || av_match_list(container->name, KnownContainers, ',') <= 0) {
        refuse(input, notSound());
    }
    return container;
}

FfmpegPointer<AVFormatContext> openContainer(FfmpegInput &input, const AVInputFormat *container)
{
    FfmpegPointer<AVFormatContext> file = ffmpegOwned(avformat_alloc_context());
    file->pb = input.io();
    file->io_open = refuseToOpen;
    file->protocol_whitelist = av_strdup("");
    file->format_whitelist = av_strdup(KnownContainers);
    file->codec_whitelist = av_strdup(soundDecoders().constData());
    AVFormatContext *opened = file.release(); // freed by the call when it fails
    if (avformat_open_input(&opened, "", container, nullptr) < 0) {
        if (FfmpegLog::lastError().contains("moov atom not found"_L1)) {
            refuse(input, u"%1 is incomplete: its index is missing, as after an interrupted recording"_s);
        }
        refuse(input, notSound());
    }
    return FfmpegPointer<AVFormatContext>(opened);
}

/// Which stream is heard, and by what it is decoded. Throws AudioFileError.
void chooseStream(FfmpegSoundStream &sound)
{
    const int best = av_find_best_stream(sound.file.get(), AVMEDIA_TYPE_AUDIO, -1, -1, &sound.decoder, 0);
    const auto streams = std::span(sound.file->streams, sound.file->nb_streams);
    if (best < 0) {
        const bool hasSound = std::ranges::any_of(streams, [](const AVStream *stream) {
            return stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
        });
        refuse(*sound.input,
               hasSound ? u"The sound in %1 is of a kind that cannot be read"_s : u"%1 has no sound in it"_s);
    }
    sound.stream = streams[static_cast<std::size_t>(best)];
    for (AVStream *stream : streams) {
        stream->discard = stream == sound.stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
}

} // namespace

FfmpegAudioFiles::FfmpegAudioFiles() { FfmpegLog::silence(); }

std::unique_ptr<AudioFileReader> FfmpegAudioFiles::openForReading(const QString &path)
{
    FfmpegLog::clear();
    FfmpegSoundStream sound;
    sound.input = std::make_unique<FfmpegInput>(path);
    const AVInputFormat *container = recogniseContainer(*sound.input, path);
    sound.file = openContainer(*sound.input, container);
    const FfmpegAnnouncements announcements(*sound.file);
    // Failing to understand a stream is no failure while another can be heard.
    avformat_find_stream_info(sound.file.get(), nullptr);
    chooseStream(sound);
    sound.announced = announcements.of(*sound.stream);
    sound.duration = ffmpegDuration(*sound.file, *sound.stream, sound.announced);
    return std::make_unique<FfmpegAudioFileReader>(std::move(sound));
}

std::unique_ptr<AudioFileWriter> FfmpegAudioFiles::openForWriting(const QString &path,
                                                                  const AudioFileSettings &settings)
{
    FfmpegLog::clear();
    return std::make_unique<FfmpegAacWriter>(path, settings);
}

} // namespace vesk
