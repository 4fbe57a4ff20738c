#include "Dictation/AudioInput.h"

#include "Dictation/Microphone.h"
#include "Foundation/VeskError.h"

#include <QCoroFuture>
#include <QPromise>

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

/// Broken drivers deliver NaN and infinity, and one such sample spoils every filter behind it. A sum of
/// zeroes stays zero unless one factor is not a number.
bool isSound(const AudioBlock &block)
{
    float sum = 0;
    for (const float sample : block.samples) {
        sum += sample * 0.0F;
    }
    return sum == 0.0F;
}

} // namespace

AudioInput::AudioInput(const AudioDevices &devices, AudioEngines &engines)
    : m_devices(devices)
    , m_engine(engines.make())
    , m_queue("vesk.audio")
{
}

AudioInput::~AudioInput() { stop(); }

void AudioInput::start(const QString &mode, OnBuffer onBuffer)
{
    m_queue.sync([&] { begin(mode, std::move(onBuffer)); });
}

Task<> AudioInput::starting(QString mode, OnBuffer onBuffer)
{
    std::function<void()> work = [this, mode, consumer = std::move(onBuffer)] { begin(mode, consumer); };
    const QFuture<void> started = perform(std::move(work));
    co_await started;
}

Task<> AudioInput::stopping()
{
    std::function<void()> work = [this] { end(); };
    const QFuture<void> stopped = perform(std::move(work));
    co_await stopped;
}

QFuture<void> AudioInput::perform(std::function<void()> work)
{
    const auto promise = std::make_shared<QPromise<void>>();
    promise->start();
    m_queue.async([promise, work = std::move(work)] {
        try {
            work();
        } catch (...) {
            promise->setException(std::current_exception());
        }
        promise->finish();
    });
    return promise->future();
}

void AudioInput::stopLater()
{
    m_queue.async([this] { end(); });
}

void AudioInput::stop()
{
    m_queue.sync([this] { end(); });
}

AudioStats AudioInput::stats() const
{
    const std::lock_guard lock(m_lock);
    return m_meter;
}

std::optional<AudioEngine::CaptureTime> AudioInput::firstSample() const
{
    const std::lock_guard lock(m_lock);
    return m_firstSample;
}

float AudioInput::loudness(const AudioBlock &block)
{
    if (block.frames() == 0 || !isSound(block)) {
        return 0;
    }
    double squares = 0;
    for (std::size_t i = 0; i < block.samples.size(); i += static_cast<std::size_t>(block.format.channels)) {
        squares += static_cast<double>(block.samples[i]) * static_cast<double>(block.samples[i]);
    }
    const double rms = std::sqrt(squares / static_cast<double>(block.frames()));
    const double level = (20 * std::log10(std::max(rms, 0.00001)) + 50) / 45;
    return static_cast<float>(std::clamp(level, 0.0, 1.0));
}

void AudioInput::begin(const QString &mode, OnBuffer onBuffer)
{
    m_engine->removeTap(); // before the consumer that it calls is replaced
    const auto preferred = Microphone::preferred(mode, m_devices);
    m_engine->setCurrentDevice(preferred);
    const auto device = preferred ? preferred : m_devices.defaultInput();
    const auto name = device ? m_devices.name(*device) : std::nullopt;
    {
        const std::lock_guard lock(m_lock);
        m_meter = AudioStats();
        m_meter.device = name.value_or(m_meter.device);
        m_firstSample.reset();
    }
    m_onBuffer = std::move(onBuffer);
    try {
        attach();
    } catch (...) {
        end();
        throw;
    }
    m_engine->setConfigurationChangeHandler([this] { m_queue.async([this] { attachAgain(); }); });
}

void AudioInput::attach()
{
    if (!m_onBuffer) {
        return;
    }
    constexpr qsizetype BufferSize = 2048;
    m_engine->removeTap();
    const AudioFormat format = m_engine->inputFormat();
    if (!format.isUsable()) {
        throw VeskError::noMicrophone();
    }
    m_engine->installTap(BufferSize, format, [this](const AudioBlock &block, AudioEngine::CaptureTime at) {
        measure(block, at);
    });
    m_engine->prepare();
    m_engine->start();
}

void AudioInput::attachAgain()
{
    if (!m_onBuffer) {
        return;
    }
    {
        const std::lock_guard lock(m_lock);
        ++m_meter.restarts;
    }
    try {
        attach();
    } catch (const std::exception &) {
        // The recording goes on in silence: what was said so far is worth more than an error now, and the
        // engine reports a change when there is something to record again.
    }
}

void AudioInput::end()
{
    m_engine->setConfigurationChangeHandler({});
    m_engine->removeTap(); // before the consumer goes that it calls
    m_onBuffer = {};
    if (m_engine->isRunning()) {
        m_engine->stop();
    }
}

void AudioInput::measure(const AudioBlock &block, AudioEngine::CaptureTime captured)
{
    const float level = loudness(block);
    {
        const std::lock_guard lock(m_lock);
        m_meter.frames += block.frames();
        m_meter.peak = std::max(m_meter.peak, level);
        if (!m_firstSample && block.frames() > 0) {
            m_firstSample = captured;
        }
    }
    if (level == 0 && !isSound(block)) {
        m_silence.format = block.format;
        m_silence.samples.assign(block.samples.size(), 0.0F);
        m_onBuffer(m_silence, 0);
    } else {
        m_onBuffer(block, level);
    }
}

} // namespace vesk
