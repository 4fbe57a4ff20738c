#pragma once

#include "Foundation/UserError.h"
#include "Support/SoundRig.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace vesk::test {

/// A sound server that hangs.
class FakeServerError final : public UserError {
public:
    QString errorDescription() const override { return QStringLiteral("The fake server hangs"); }
};

/// Microphones without hardware that misbehave as hardware does: they go away in mid-phrase, come back as
/// another device, deliver blocks of any length or none, and tell of changes on another thread. Callable from
/// any thread.
class FakeSound final : public SoundRig, public AudioDevices, public AudioEngines {
public:
    enum class Source {
        tones, ///< what sound() says, at its own speed, on a thread of its own
        test,  ///< only what deliver() is given
    };

    explicit FakeSound(Source source);
    ~FakeSound() override;

    /// What every microphone delivers; not usable to play a driver that knows none yet.
    void setFormat(const AudioFormat &format);
    /// Makes the next starts fail, until it is told otherwise.
    void setDenied(bool isDenied) { m_isDenied = isDenied; }
    /// Hands a block to every engine that records, from another thread, and waits for it.
    void deliver(const AudioBlock &block, AudioEngine::CaptureTime captured = {});
    /// Tells every engine's owner of a change that is none.
    void reportChange();
    /// Engines that record now.
    int recordings() const;
    /// Engines that have not been destroyed.
    int engineCount() const;

    const AudioDevices &devices() override { return *this; }
    AudioEngines &engines() override { return *this; }
    void plug(const QString &name, AudioTransport transport = AudioTransport::other) override;
    void unplug(const QString &name) override;
    void makeDefault(const QString &name) override;
    void sound(const QString &device, double frequency) override;
    void endServer() override;
    void startServer() override;
    void freezeServer() override { m_isFrozen = true; }
    void thawServer() override { m_isFrozen = false; }

    Availability availability() const override;
    std::optional<AudioDeviceID> defaultInput() const override;
    std::optional<QString> name(AudioDeviceID device) const override;
    std::optional<AudioTransport> transport(AudioDeviceID device) const override;
    std::vector<AudioDeviceID> inputDevices() const override;

    std::unique_ptr<AudioEngine> make() override;

private:
    class Engine;

    struct Device {
        AudioDeviceID id = 0;
        QString name;
        AudioTransport transport = AudioTransport::other;
        double frequency = 0;
        qint64 played = 0; ///< frames
    };

    template <typename Key>
    const Device *find(Key Device::*member, const Key &key) const
    {
        const auto found = std::ranges::find(m_devices, key, member);
        return found == m_devices.end() ? nullptr : &*found;
    }
    const Device *running(AudioDeviceID id) const { return m_isUp ? find(&Device::id, id) : nullptr; }
    template <typename Work>
    auto locked(Work work) const
    {
        const std::lock_guard lock(m_mutex);
        return work();
    }
    /// Changes the computer, and tells the engines.
    void change(const std::function<void()> &how);
    void play();

    /// Held in every call of a tap or a handler: whoever removes one waits for it.
    mutable std::mutex m_mutex;
    AudioFormat m_format = {48'000, 2};
    std::vector<Device> m_devices;
    AudioDeviceID m_nextID = 1;
    QString m_default;
    bool m_isUp = true;
    std::atomic<bool> m_isFrozen = false;
    std::atomic<bool> m_isDenied = false;
    std::vector<Engine *> m_engines;

    std::condition_variable m_ended;
    bool m_isEnding = false;
    std::thread m_player;
};

} // namespace vesk::test
