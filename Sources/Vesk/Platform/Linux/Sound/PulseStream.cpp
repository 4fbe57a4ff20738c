#include "Platform/Linux/Sound/PulseStream.h"

#include "Platform/Linux/Sound/SoundServerError.h"

#include <algorithm>
#include <utility>

namespace vesk {

namespace {

using Clock = std::chrono::steady_clock;

/// How much sound the server hands over at a time. What is not handed over when the key is let go is lost,
/// so it is short; each hand-over wakes the program.
constexpr int HandOversPerSecond = 50;

pa_channel_map channelMap(const PulseMicrophone &microphone, const AudioFormat &format)
{
    if (format.channels == microphone.channels.channels) {
        return microphone.channels; // the same positions: the server mixes nothing
    }
    pa_channel_map map = {};
    pa_channel_map_init_extend(&map, static_cast<unsigned>(format.channels), PA_CHANNEL_MAP_DEFAULT);
    return map;
}

/// A stream that the server has not connected yet cannot be disconnected, and would record for ever as soon
/// as a hanging server recovers. So it stays until it can be.
void abandon(PulsePointer<pa_stream> stream)
{
    const auto ended = [](pa_stream *late, void *) {
        switch (pa_stream_get_state(late)) {
        case PA_STREAM_READY: pa_stream_disconnect(late); break;
        case PA_STREAM_FAILED:
        case PA_STREAM_TERMINATED: {
            pa_stream_set_state_callback(late, nullptr, nullptr);
            const PulsePointer<pa_stream> last(late);
            break;
        }
        default: break;
        }
    };
    pa_stream_set_state_callback(stream.release(), ended, nullptr);
}

} // namespace

PulseStream::PulseStream(pa_context *context, const PulseMicrophone &microphone, const AudioFormat &format,
                         Callbacks callbacks)
    : m_source(microphone.name)
    , m_callbacks(std::move(callbacks))
    , m_sampleSpec({PA_SAMPLE_FLOAT32NE, static_cast<uint32_t>(format.sampleRate),
                    static_cast<uint8_t>(format.channels)})
{
    const pa_channel_map map = channelMap(microphone, format);
    m_stream.reset(pa_stream_new(context, "Recording", &m_sampleSpec, &map));
    if (!m_stream) {
        throw SoundServerError::refused(pa_context_errno(context));
    }
    pa_stream_set_state_callback(
        m_stream.get(), [](pa_stream *, void *self) { static_cast<PulseStream *>(self)->stateChanged(); },
        this);
    pa_stream_set_read_callback(
        m_stream.get(), [](pa_stream *, size_t, void *self) { static_cast<PulseStream *>(self)->read(); },
        this);
    // The server was told not to, but when the last microphone goes away servers move its recordings to what
    // the speaker plays, and not a sample of that may pass for speech.
    pa_stream_set_moved_callback(
        m_stream.get(),
        [](pa_stream *, void *self) { static_cast<PulseStream *>(self)->lose(PA_ERR_KILLED); }, this);
    connect(format);
}

void PulseStream::connect(const AudioFormat &format)
{
    pa_buffer_attr buffer = {};
    buffer.maxlength = static_cast<uint32_t>(-1);
    buffer.fragsize = static_cast<uint32_t>(std::max(format.sampleRate / HandOversPerSecond, 1))
        * static_cast<uint32_t>(pa_frame_size(&m_sampleSpec));
    constexpr auto Flags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);
    if (pa_stream_connect_record(m_stream.get(), m_source.c_str(), &buffer, Flags) < 0) {
        throw SoundServerError::refused(pa_context_errno(pa_stream_get_context(m_stream.get())));
    }
}

PulseStream::~PulseStream()
{
    pa_stream_set_state_callback(m_stream.get(), nullptr, nullptr);
    pa_stream_set_read_callback(m_stream.get(), nullptr, nullptr);
    pa_stream_set_moved_callback(m_stream.get(), nullptr, nullptr);
    if (pa_stream_get_state(m_stream.get()) == PA_STREAM_CREATING) {
        abandon(std::move(m_stream));
    } else {
        pa_stream_disconnect(m_stream.get());
    }
}

std::optional<int> PulseStream::awaitOpening(std::chrono::milliseconds limit) const
{
    std::unique_lock lock(m_mutex);
    m_settled.wait_for(lock, limit, [this] { return m_outcome.has_value(); });
    return m_outcome;
}

void PulseStream::stateChanged()
{
    switch (pa_stream_get_state(m_stream.get())) {
    case PA_STREAM_READY:
        // A server that no longer has the source may have taken any other.
        if (m_source != pa_stream_get_device_name(m_stream.get())) {
            lose(PA_ERR_NOENTITY);
        } else {
            settle(0);
        }
        break;
    case PA_STREAM_FAILED:
    case PA_STREAM_TERMINATED: lose(pa_context_errno(pa_stream_get_context(m_stream.get()))); break;
    default: break;
    }
}

void PulseStream::lose(int error)
{
    const bool wasOpen = !settle(error);
    if (!std::exchange(m_isLost, true) && wasOpen) {
        m_callbacks.lost();
    }
}

bool PulseStream::settle(int outcome)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_outcome) {
            return false;
        }
        m_outcome = outcome;
    }
    m_settled.notify_all();
    return true;
}

void PulseStream::read()
{
    const auto length = [this](size_t bytes) {
        return std::chrono::microseconds(pa_bytes_to_usec(bytes, &m_sampleSpec));
    };
    auto captured = Clock::now() - length(pa_stream_readable_size(m_stream.get()));
    const void *data = nullptr;
    size_t bytes = 0;
    while (pa_stream_peek(m_stream.get(), &data, &bytes) == 0 && bytes > 0) {
        if (!m_isLost) {
            m_callbacks.sound(static_cast<const float *>(data),
                              static_cast<qsizetype>(bytes / pa_frame_size(&m_sampleSpec)), captured);
        }
        captured += length(bytes);
        pa_stream_drop(m_stream.get());
    }
}

} // namespace vesk
