#pragma once

#include "Platform/AudioEngine.h"
#include "Platform/Linux/Sound/PulseConnection.h"
#include "Platform/Linux/Sound/PulseStream.h"

namespace vesk {

/// Records one microphone of the sound server. A stream is connected at the start, not kept ready: a kept one
/// would be a little faster, but desktops show it as a program that listens.
class PulseAudioEngine final : public AudioEngine, private PulseConnection::Watcher {
public:
    explicit PulseAudioEngine(PulseConnection &connection);
    ~PulseAudioEngine() override;

    void setCurrentDevice(std::optional<AudioDeviceID> device) override;
    AudioFormat inputFormat() override;
    void installTap(qsizetype bufferSize, const AudioFormat &format, Tap tap) override;
    void removeTap() override;
    void prepare() override {} // the connection is always prepared
    void start() override;
    bool isRunning() const override;
    void stop() override;
    void setConfigurationChangeHandler(std::function<void()> handler) override;

private:
    /// A microphone in one run of the server; none in run 0.
    struct Target {
        quint64 run = 0;
        quint32 index = 0;
        friend bool operator==(const Target &, const Target &) = default;
    };

    const PulseMicrophone *choose(const PulseInventory &inventory) const;
    Target target(const PulseInventory &inventory) const;
    bool isAttachedTo(const Target &target) const;
    PulseStream *connectStream();
    void verify();
    [[noreturn]] void giveUp(std::optional<int> error);
    void deliver(const float *samples, qsizetype frames, CaptureTime captured);
    void soundChanged() override;

    PulseConnection &m_connection;

    // All under the loop's lock:
    std::string m_device; ///< the chosen microphone by name, so that it is found again in a new run; or empty
    AudioFormat m_format;
    qsizetype m_bufferSize = 0;
    Tap m_tap;
    AudioBlock m_block; ///< reused for every call of the tap
    std::unique_ptr<PulseStream> m_stream;
    AudioFormat m_streamFormat;
    Target m_attached; ///< what m_stream records
    std::function<void()> m_handler;
    Target m_reported;         ///< what the handler, or start(), knows of
    bool m_mustReport = false; ///< the recording ended, or did not begin, although nothing else changed
    std::optional<PulseTimer> m_retry;
    std::optional<PulseTimer> m_verify; ///< armed while recording
};

class PulseAudioEngines final : public AudioEngines {
public:
    explicit PulseAudioEngines(PulseConnection &connection)
        : m_connection(connection)
    {
    }
    std::unique_ptr<AudioEngine> make() override { return std::make_unique<PulseAudioEngine>(m_connection); }

private:
    PulseConnection &m_connection;
};

} // namespace vesk
