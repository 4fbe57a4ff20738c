#include "Support/FakeSound.h"

#include "Foundation/VeskError.h"
#include "Support/Tones.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vesk::test {

class FakeSound::Engine final : public AudioEngine {
public:
    explicit Engine(FakeSound &sound)
        : m_sound(sound)
    {
        m_sound.locked([this] { m_sound.m_engines.push_back(this); });
    }
    ~Engine() override
    {
        m_sound.locked([this] { std::erase(m_sound.m_engines, this); });
    }

    void setCurrentDevice(std::optional<AudioDeviceID> device) override
    {
        m_sound.locked([&] { m_current = device; });
    }
    AudioFormat inputFormat() override
    {
        const std::lock_guard lock(m_sound.m_mutex);
        if (m_sound.m_isDenied) {
            throw VeskError::microphoneDenied();
        }
        return chosen() == 0 ? AudioFormat() : m_sound.m_format;
    }
    void installTap(qsizetype bufferSize, const AudioFormat &format, Tap tap) override
    {
        const std::lock_guard lock(m_sound.m_mutex);
        m_bufferSize = bufferSize;
        m_tapFormat = format;
        m_tap = std::move(tap);
    }
    void removeTap() override
    {
        m_sound.locked([this] { m_tap = {}; });
    }
    void prepare() override {}
    void start() override
    {
        const std::lock_guard lock(m_sound.m_mutex);
        m_recorded = 0;
        m_reported = chosen();
        if (m_sound.m_isFrozen) {
            throw FakeServerError();
        }
        if (m_reported == 0) {
            throw VeskError::noMicrophone();
        }
        m_recorded = m_reported;
    }
    bool isRunning() const override
    {
        return m_sound.locked([this] { return m_recorded != 0; });
    }
    void stop() override
    {
        m_sound.locked([this] { m_recorded = 0; });
    }
    void setConfigurationChangeHandler(std::function<void()> handler) override
    {
        m_sound.locked([&] { m_handler = std::move(handler); });
    }

    // The rest under the mutex:
    AudioDeviceID recorded() const { return m_recorded; }
    void hand(const AudioBlock &block, CaptureTime captured) const
    {
        if (m_tap && m_recorded != 0 && block.format == m_tapFormat && block.frames() <= m_bufferSize) {
            m_tap(block, captured);
        }
    }
    void changed(bool isForced)
    {
        const bool isLost = m_recorded != 0 && m_sound.running(m_recorded) == nullptr;
        m_recorded = isLost ? 0 : m_recorded;
        const AudioDeviceID wanted = chosen();
        if (m_handler && (isForced || isLost || (wanted != m_recorded && wanted != m_reported))) {
            m_reported = wanted;
            m_handler();
        }
    }

private:
    AudioDeviceID chosen() const
    {
        if (m_current && m_sound.running(*m_current) != nullptr) {
            return *m_current;
        }
        const Device *standard = m_sound.find(&Device::name, m_sound.m_default);
        return standard == nullptr || !m_sound.m_isUp ? 0 : standard->id;
    }

    FakeSound &m_sound;
    std::optional<AudioDeviceID> m_current;
    AudioFormat m_tapFormat;
    qsizetype m_bufferSize = 0;
    Tap m_tap;
    AudioDeviceID m_recorded = 0;
    AudioDeviceID m_reported = 0;
    std::function<void()> m_handler;
};

FakeSound::FakeSound(Source source)
{
    if (source == Source::tones) {
        m_player = std::thread([this] { play(); });
    }
}

FakeSound::~FakeSound()
{
    locked([this] { m_isEnding = true; });
    m_ended.notify_all();
    if (m_player.joinable()) {
        m_player.join();
    }
}

void FakeSound::setFormat(const AudioFormat &format)
{
    locked([&] { m_format = format; });
}

void FakeSound::deliver(const AudioBlock &block, AudioEngine::CaptureTime captured)
{
    std::thread([&] {
        const std::lock_guard lock(m_mutex);
        for (const Engine *engine : m_engines) {
            engine->hand(block, captured);
        }
    }).join();
}

void FakeSound::change(const std::function<void()> &how)
{
    const std::lock_guard lock(m_mutex);
    how();
    for (Engine *engine : m_engines) {
        engine->changed(false);
    }
}

void FakeSound::plug(const QString &name, AudioTransport transport)
{
    change([&] {
        m_devices.push_back({m_nextID++, name, transport});
        m_default = m_devices.size() == 1 ? name : m_default;
    });
}

void FakeSound::unplug(const QString &name)
{
    change([&] {
        std::erase_if(m_devices, [&name](const Device &device) { return device.name == name; });
        if (m_default == name) {
            m_default = m_devices.empty() ? QString() : m_devices.front().name;
        }
    });
}

void FakeSound::makeDefault(const QString &name)
{
    change([&] { m_default = name; });
}

void FakeSound::sound(const QString &device, double frequency)
{
    const std::lock_guard lock(m_mutex);
    const auto found = std::ranges::find(m_devices, device, &Device::name);
    if (found != m_devices.end()) { // else the speaker, which no microphone here hears
        found->frequency = frequency;
    }
}

void FakeSound::endServer()
{
    change([this] {
        m_isUp = false;
        for (Device &device : m_devices) {
            device.id = m_nextID++;
        }
    });
}

void FakeSound::startServer()
{
    change([this] { m_isUp = true; });
}

std::optional<AudioDeviceID> FakeSound::defaultInput() const
{
    const std::lock_guard lock(m_mutex);
    const Device *found = m_isUp ? find(&Device::name, m_default) : nullptr;
    return found == nullptr ? std::nullopt : std::optional(found->id);
}

std::optional<QString> FakeSound::name(AudioDeviceID device) const
{
    const std::lock_guard lock(m_mutex);
    const Device *found = running(device);
    return found == nullptr ? std::nullopt : std::optional<QString>(u"The " + found->name);
}

std::optional<AudioTransport> FakeSound::transport(AudioDeviceID device) const
{
    const std::lock_guard lock(m_mutex);
    const Device *found = running(device);
    return found == nullptr ? std::nullopt : std::optional(found->transport);
}

void FakeSound::reportChange()
{
    std::thread([this] {
        const std::lock_guard lock(m_mutex);
        for (Engine *engine : m_engines) {
            engine->changed(true);
        }
    }).join();
}

int FakeSound::engineCount() const
{
    return locked([this] { return static_cast<int>(m_engines.size()); });
}

int FakeSound::recordings() const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(std::count_if(m_engines.begin(), m_engines.end(),
                                          [](const Engine *engine) { return engine->recorded() != 0; }));
}

Availability FakeSound::availability() const
{
    const std::lock_guard lock(m_mutex);
    return m_isUp ? Availability::available()
                  : Availability::unavailable(QStringLiteral("The fake server ended"));
}

std::vector<AudioDeviceID> FakeSound::inputDevices() const
{
    const std::lock_guard lock(m_mutex);
    std::vector<AudioDeviceID> devices;
    for (const Device &device : m_devices) {
        devices.push_back(device.id);
    }
    return m_isUp ? devices : std::vector<AudioDeviceID>();
}

std::unique_ptr<AudioEngine> FakeSound::make() { return std::make_unique<Engine>(*this); }

void FakeSound::play()
{
    constexpr std::array<qsizetype, 4> Lengths = {480, 0, 1, 959}; // frames: all that hardware has tried
    std::unique_lock lock(m_mutex);
    for (std::size_t turn = 0; !m_isEnding; ++turn) {
        const qsizetype frames = Lengths.at(turn % Lengths.size());
        for (Device &device : m_devices) {
            const AudioBlock sound = tone(m_format, device.frequency, device.played + frames);
            for (const Engine *engine : m_engines) {
                if (engine->recorded() == device.id) {
                    engine->hand(part(sound, device.played, frames), std::chrono::steady_clock::now());
                }
            }
            device.played = (device.played + frames) % m_format.sampleRate; // whole periods in a second
        }
        m_ended.wait_for(lock, std::chrono::milliseconds(5));
    }
}

} // namespace vesk::test
