#pragma once

#include "Platform/Linux/Sound/PulseDefaultProbe.h"
#include "Platform/Linux/Sound/PulseInventory.h"
#include "Platform/Linux/Sound/PulsePointers.h"
#include "Platform/Linux/Sound/PulseTimer.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <vector>

namespace vesk {

/// One connection to the sound server, PulseAudio's or PipeWire's, made at once, kept, and made again when
/// the server went away. Knows the microphones at every moment, so that a press asks nobody. Its loop runs on
/// the thread "vesk.sound"; the functions that say so need the loop's lock, which that thread has in every
/// callback.
class PulseConnection {
public:
    /// Wants to know when microphones came or went, the default changed, or the server did.
    class Watcher {
    public:
        virtual ~Watcher() = default;
        /// On the loop's thread; must not wait.
        virtual void soundChanged() = 0;
    };

    /// How long anything here waits for the server. A headset over Bluetooth takes most of it to open its
    /// microphone, and a person waits no longer for an indicator.
    static constexpr std::chrono::milliseconds AnswerLimit{2'000};

    /// `server` as in PULSE_SERVER; empty: the person's own. Returns at once.
    explicit PulseConnection(std::string server);
    ~PulseConnection();
    PulseConnection(const PulseConnection &) = delete;
    PulseConnection &operator=(const PulseConnection &) = delete;

    /// What is known now; without microphones while there is no server. Any thread.
    PulseInventory inventory() const;

    /// The same, but while a connection is being made it waits for its first answer, AnswerLimit at most from
    /// when that began. Not on the loop's thread.
    PulseInventory awaitInventory() const;

    /// Any thread.
    bool isDenied() const;
    Availability availability() const;

    pa_threaded_mainloop *loop() const { return m_loop.get(); }

    /// The connection when it can be used, else null. Needs the lock.
    pa_context *readyContext() const;

    /// Asks for the microphones again and tells the watchers. Without a server they are told when there is
    /// one. Needs the lock.
    void refresh();

    /// Makes sure, where the server has to be asked twice, that the default is the one that is known here.
    /// Needs the lock.
    void verifyDefault();

    /// Need the lock.
    void add(Watcher &watcher);
    void remove(Watcher &watcher);

private:
    enum class State {
        connecting,
        ready,
        denied,
        absent,
    };

    void connect();
    void contextChanged();
    void connectLater();
    void subscribe();
    void addServer(const pa_server_info &server);
    void addToGathering(const pa_source_info *source, int endOfList);
    void correctDefault(const std::string &source);
    void publish(State state, PulseInventory inventory);

    std::string m_server;
    PulsePointer<pa_threaded_mainloop> m_loop;

    // Under the loop's lock:
    PulsePointer<pa_context> m_context;
    std::optional<PulseTimer> m_reconnect;
    int m_attempts = 0; ///< in vain since the last connection
    quint64 m_run = 0;
    bool m_isGathering = false;
    bool m_isOutdated = false; ///< something changed while gathering
    PulseInventory m_gathering;
    bool m_isPipeWire = false;
    std::optional<PulseDefaultProbe> m_probe;
    std::string m_toldDefault; ///< by this connection
    std::string m_trueDefault; ///< by the probe, where it says otherwise; until this connection is told anew
    std::vector<Watcher *> m_watchers;

    mutable std::mutex m_mutex; ///< guards what follows; may be taken under the loop's lock, never around it
    mutable std::condition_variable m_answered;
    State m_state = State::connecting;
    std::chrono::steady_clock::time_point m_waitUntil;
    std::optional<std::chrono::steady_clock::time_point> m_firstWait; ///< of the first attempt
    PulseInventory m_inventory;
};

} // namespace vesk
