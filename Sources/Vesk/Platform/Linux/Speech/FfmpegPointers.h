#pragma once

#include "Platform/AudioBlock.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
}

#include <memory>

namespace vesk {

/// Frees FFmpeg's objects, each by the function that belongs to it.
struct FfmpegDeleter {
    void operator()(AVFormatContext *context) const { avformat_close_input(&context); }
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
    void operator()(SwrContext *context) const { swr_free(&context); }
    void operator()(AVIOContext *context) const
    {
        av_freep(&context->buffer); // FFmpeg may have replaced the buffer it was given
        avio_context_free(&context);
    }
};

/// A container that is written is freed by another function than one that is read.
struct FfmpegMuxerDeleter {
    void operator()(AVFormatContext *context) const { avformat_free_context(context); }
};
using FfmpegMuxer = std::unique_ptr<AVFormatContext, FfmpegMuxerDeleter>;

template <typename T>
using FfmpegPointer = std::unique_ptr<T, FfmpegDeleter>;

/// What FFmpeg has just allocated; its only failure is the end of memory.
template <typename T>
FfmpegPointer<T> ffmpegOwned(T *allocated)
{
    if (allocated == nullptr) {
        throw std::bad_alloc();
    }
    return FfmpegPointer<T>(allocated);
}

/// A conversion to interleaved floating point that is still to be initialised; null when the library refuses.
/// The channels have no positions, so that equal counts pass through unmixed.
inline FfmpegPointer<SwrContext> allocateConversion(AVSampleFormat sampleType, const AudioFormat &from,
                                                    const AudioFormat &to)
{
    AVChannelLayout input = {};
    input.nb_channels = from.channels;
    AVChannelLayout output = {};
    output.nb_channels = to.channels;
    SwrContext *made = nullptr;
    swr_alloc_set_opts2(&made, &output, AV_SAMPLE_FMT_FLT, to.sampleRate, &input, sampleType, from.sampleRate,
                        0, nullptr);
    return FfmpegPointer<SwrContext>(made);
}

} // namespace vesk
