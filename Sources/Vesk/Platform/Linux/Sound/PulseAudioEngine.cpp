#include "Platform/Linux/Sound/PulseAudioEngine.h"

#include "Foundation/VeskError.h"
#include "Platform/Linux/Sound/SoundServerError.h"

#include <algorithm>
#include <utility>

namespace vesk {

PulseAudioEngine::PulseAudioEngine(PulseConnection &connection)
    : m_connection(connection)
{
    const PulseLock lock(m_connection.loop());
    m_connection.add(*this);
    // Asks before it reports: a server that hangs is reported when it answers again, not over and over.
    pa_mainloop_api *api = pa_threaded_mainloop_get_api(m_connection.loop());
    m_retry.emplace(api, [this] {
        m_mustReport = !m_stream;
        m_connection.refresh();
    });
    m_verify.emplace(api, [this] { verify(); });
}

PulseAudioEngine::~PulseAudioEngine()
{
    const PulseLock lock(m_connection.loop());
    m_connection.remove(*this);
    m_retry.reset();
    m_verify.reset();
    m_stream.reset();
}

void PulseAudioEngine::setCurrentDevice(std::optional<AudioDeviceID> device)
{
    const PulseInventory inventory = m_connection.awaitInventory();
    const PulseMicrophone *chosen = device ? inventory.find(*device) : nullptr;
    const PulseLock lock(m_connection.loop());
    m_device = chosen == nullptr ? std::string() : chosen->name;
}

AudioFormat PulseAudioEngine::inputFormat()
{
    const PulseInventory inventory = m_connection.awaitInventory();
    if (m_connection.isDenied()) {
        throw VeskError::microphoneDenied();
    }
    const PulseLock lock(m_connection.loop());
    const PulseMicrophone *chosen = choose(inventory);
    return chosen == nullptr ? AudioFormat() : chosen->format();
}

void PulseAudioEngine::installTap(qsizetype bufferSize, const AudioFormat &format, Tap tap)
{
    const PulseLock lock(m_connection.loop());
    m_bufferSize = bufferSize;
    m_format = format;
    m_tap = std::move(tap);
    m_block.format = format;
    m_block.samples.reserve(static_cast<std::size_t>(bufferSize * format.channels));
}

void PulseAudioEngine::removeTap()
{
    const PulseLock lock(m_connection.loop());
    m_tap = {};
}

void PulseAudioEngine::start()
{
    PulseStream *stream = nullptr;
    {
        const PulseLock lock(m_connection.loop());
        stream = connectStream();
    }
    // The stream ends only in functions of the calling thread, so it is there without the lock.
    const std::optional<int> outcome = stream->awaitOpening(PulseConnection::AnswerLimit);
    if (outcome != 0) {
        giveUp(outcome);
    }
}

bool PulseAudioEngine::isRunning() const
{
    const PulseLock lock(m_connection.loop());
    return m_stream && m_stream->isGood();
}

void PulseAudioEngine::stop()
{
    const PulseLock lock(m_connection.loop());
    m_stream.reset();
}

void PulseAudioEngine::setConfigurationChangeHandler(std::function<void()> handler)
{
    const PulseLock lock(m_connection.loop());
    m_handler = std::move(handler);
    soundChanged(); // what changed between the start and now
}

const PulseMicrophone *PulseAudioEngine::choose(const PulseInventory &inventory) const
{
    const PulseMicrophone *chosen = m_device.empty() ? nullptr : inventory.find(m_device);
    return chosen == nullptr ? inventory.standard() : chosen;
}

PulseAudioEngine::Target PulseAudioEngine::target(const PulseInventory &inventory) const
{
    const PulseMicrophone *chosen = choose(inventory);
    return chosen == nullptr ? Target() : Target{inventory.run, chosen->index};
}

bool PulseAudioEngine::isAttachedTo(const Target &target) const
{
    return m_stream && m_stream->isGood() && m_attached == target;
}

PulseStream *PulseAudioEngine::connectStream()
{
    const PulseInventory inventory = m_connection.inventory();
    const Target wanted = target(inventory);
    m_reported = wanted;
    m_mustReport = false;
    if (isAttachedTo(wanted) && m_streamFormat == m_format) {
        return m_stream.get(); // goes on without losing a sample
    }
    m_stream.reset();
    pa_context *context = m_connection.readyContext();
    if (wanted == Target() || context == nullptr) {
        throw VeskError::noMicrophone();
    }
    PulseStream::Callbacks callbacks;
    callbacks.sound = [this](const float *samples, qsizetype frames, CaptureTime captured) {
        deliver(samples, frames, captured);
    };
    callbacks.lost = [this] {
        // What took its place is known when the server has said what there is now.
        m_mustReport = true;
        m_connection.refresh();
    };
    m_stream = std::make_unique<PulseStream>(context, *choose(inventory), m_format, std::move(callbacks));
    m_streamFormat = m_format;
    m_attached = wanted;
    verify();
    return m_stream.get();
}

void PulseAudioEngine::verify()
{
    if (m_stream) {
        m_connection.verifyDefault();
        m_verify->after(std::chrono::seconds(2));
    }
}

void PulseAudioEngine::giveUp(std::optional<int> error)
{
    const PulseLock lock(m_connection.loop());
    m_stream.reset();
    m_mustReport = false;
    m_retry->after(std::chrono::seconds(1));
    if (error == PA_ERR_ACCESS) {
        throw VeskError::microphoneDenied();
    }
    throw error ? SoundServerError::refused(*error) : SoundServerError::noAnswer();
}

void PulseAudioEngine::deliver(const float *samples, qsizetype frames, CaptureTime captured)
{
    if (!m_tap || m_streamFormat != m_format) {
        return;
    }
    for (qsizetype first = 0; first < frames; first += m_bufferSize) {
        const qsizetype count = std::min(m_bufferSize, frames - first) * m_format.channels;
        if (samples == nullptr) {
            m_block.samples.assign(static_cast<std::size_t>(count), 0.0F);
        } else {
            const float *begin = samples + first * m_format.channels;
            m_block.samples.assign(begin, begin + count);
        }
        m_tap(m_block, captured + std::chrono::microseconds(first * 1'000'000 / m_format.sampleRate));
    }
}

void PulseAudioEngine::soundChanged()
{
    const Target wanted = target(m_connection.inventory());
    if (!m_handler || isAttachedTo(wanted)) {
        return;
    }
    if (m_reported != wanted || m_mustReport) {
        m_reported = wanted;
        m_mustReport = false;
        m_handler();
    }
}

} // namespace vesk
