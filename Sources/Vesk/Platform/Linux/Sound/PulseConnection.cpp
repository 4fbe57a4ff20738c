#include "Platform/Linux/Sound/PulseConnection.h"

#include "Foundation/VeskError.h"
#include "Platform/Linux/Sound/SoundServerError.h"

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

namespace vesk {

namespace {

using Clock = std::chrono::steady_clock;

/// For requests whose answer arrives by another way.
void forget(pa_operation *operation) { const PulsePointer<pa_operation> ended(operation); }

PulseConnection &connection(void *self) { return *static_cast<PulseConnection *>(self); }

} // namespace

PulseConnection::PulseConnection(std::string server)
    : m_server(std::move(server))
    , m_loop(pa_threaded_mainloop_new())
{
    if (m_loop) {
        pa_threaded_mainloop_set_name(m_loop.get(),
                                      "vesk.sound"); // once it runs, this names the calling thread
    }
    if (!m_loop || pa_threaded_mainloop_start(m_loop.get()) < 0) {
        throw std::bad_alloc(); // no thread or no memory for one
    }
    const PulseLock lock(m_loop.get());
    pa_mainloop_api *api = pa_threaded_mainloop_get_api(m_loop.get());
    m_reconnect.emplace(api, [this] { connect(); });
    m_probe.emplace(api, m_server, [this](const std::string &source) { correctDefault(source); });
    connect();
}

PulseConnection::~PulseConnection()
{
    {
        const PulseLock lock(m_loop.get());
        m_reconnect.reset();
        m_probe.reset();
        if (m_context) {
            pa_context_set_state_callback(m_context.get(), nullptr, nullptr);
            pa_context_set_subscribe_callback(m_context.get(), nullptr, nullptr);
            pa_context_disconnect(m_context.get());
            m_context.reset();
        }
    }
    pa_threaded_mainloop_stop(m_loop.get());
}

PulseInventory PulseConnection::inventory() const
{
    const std::lock_guard lock(m_mutex);
    return m_inventory;
}

PulseInventory PulseConnection::awaitInventory() const
{
    std::unique_lock lock(m_mutex);
    const Clock::time_point limit = m_waitUntil; // a new attempt moves it
    m_answered.wait_until(lock, limit, [this] { return m_state != State::connecting; });
    return m_inventory;
}

bool PulseConnection::isDenied() const
{
    const std::lock_guard lock(m_mutex);
    return m_state == State::denied;
}

Availability PulseConnection::availability() const
{
    std::unique_lock lock(m_mutex);
    // Asked at every press and by open windows: only just after the launch is the answer worth waiting for.
    m_answered.wait_until(lock, m_firstWait.value_or(m_waitUntil),
                          [this] { return m_state != State::connecting; });
    switch (m_state) {
    case State::connecting: return Availability::unavailable(SoundServerError::noAnswer().errorDescription());
    case State::ready: return Availability::available();
    case State::denied: return Availability::unavailable(VeskError::microphoneDenied().errorDescription());
    case State::absent: return Availability::unavailable(SoundServerError::notRunning().errorDescription());
    }
    Q_UNREACHABLE();
}

pa_context *PulseConnection::readyContext() const
{
    return m_context && pa_context_get_state(m_context.get()) == PA_CONTEXT_READY ? m_context.get() : nullptr;
}

void PulseConnection::add(Watcher &watcher) { m_watchers.push_back(&watcher); }

void PulseConnection::remove(Watcher &watcher) { std::erase(m_watchers, &watcher); }

void PulseConnection::connect()
{
    {
        const std::lock_guard lock(m_mutex);
        m_state = State::connecting;
        m_waitUntil = Clock::now() + AnswerLimit;
        m_firstWait = m_firstWait.value_or(m_waitUntil);
    }
    if (m_context) {
        pa_context_set_state_callback(m_context.get(), nullptr, nullptr);
    }
    m_context.reset(pa_context_new(pa_threaded_mainloop_get_api(m_loop.get()), "Vesk"));
    pa_context_set_state_callback(
        m_context.get(), [](pa_context *, void *self) { connection(self).contextChanged(); }, this);
    // Never starts a server: where one is wanted, the session has it.
    if (pa_context_connect(m_context.get(), m_server.empty() ? nullptr : m_server.c_str(),
                           PA_CONTEXT_NOAUTOSPAWN, nullptr)
            < 0
        && PA_CONTEXT_IS_GOOD(pa_context_get_state(m_context.get()))) {
        connectLater();
    }
}

void PulseConnection::contextChanged()
{
    switch (pa_context_get_state(m_context.get())) {
    case PA_CONTEXT_READY:
        m_attempts = 0;
        ++m_run;
        m_isGathering = false;
        m_trueDefault.clear();
        subscribe();
        refresh();
        break;
    case PA_CONTEXT_FAILED:
    case PA_CONTEXT_TERMINATED: connectLater(); break;
    default: break;
    }
}

void PulseConnection::connectLater()
{
    // A server that was restarted is back in a fraction of a second; one that is not there at all is looked
    // for once a second, which costs one failed connect().
    constexpr int QuickAttempts = 20;
    m_reconnect->after(std::chrono::milliseconds(m_attempts++ < QuickAttempts ? 100 : 1'000));
    const bool isDenied = pa_context_errno(m_context.get()) == PA_ERR_ACCESS;
    publish(isDenied ? State::denied : State::absent, {});
}

void PulseConnection::subscribe()
{
    pa_context_set_subscribe_callback(
        m_context.get(), [](pa_context *, auto, auto, void *self) { connection(self).refresh(); }, this);
    constexpr auto Mask =
        static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SERVER);
    forget(pa_context_subscribe(m_context.get(), Mask, nullptr, nullptr));
}

void PulseConnection::refresh()
{
    if (readyContext() == nullptr) {
        return;
    }
    m_isOutdated = m_isGathering;
    if (m_isGathering) {
        return;
    }
    m_isGathering = true;
    m_gathering = {};
    m_gathering.run = m_run;
    // The server answers in the order it was asked: the list's end is the end of both.
    const auto onServer = [](pa_context *, const pa_server_info *info, void *self) {
        if (info != nullptr) {
            connection(self).addServer(*info);
        }
    };
    const auto onSource = [](pa_context *, const pa_source_info *source, int endOfList, void *self) {
        connection(self).addToGathering(source, endOfList);
    };
    forget(pa_context_get_server_info(m_context.get(), onServer, this));
    forget(pa_context_get_source_info_list(m_context.get(), onSource, this));
}

void PulseConnection::addServer(const pa_server_info &server)
{
    const std::string told = server.default_source_name != nullptr ? server.default_source_name : "";
    if (std::exchange(m_toldDefault, told) != told) {
        m_trueDefault.clear();
    }
    m_gathering.defaultSource = m_trueDefault.empty() ? told : m_trueDefault;
    m_isPipeWire = server.server_name != nullptr
        && std::string_view(server.server_name).find("PipeWire") != std::string_view::npos;
}

void PulseConnection::verifyDefault()
{
    if (m_isPipeWire && readyContext() != nullptr) {
        m_probe->ask();
    }
}

void PulseConnection::correctDefault(const std::string &source)
{
    const std::string known = m_trueDefault.empty() ? m_toldDefault : m_trueDefault;
    if (source != known) {
        m_trueDefault = source == m_toldDefault ? std::string() : source;
        refresh();
    }
}

void PulseConnection::addToGathering(const pa_source_info *source, int endOfList)
{
    if (endOfList == 0) {
        m_gathering.add(*source);
        return;
    }
    m_isGathering = false;
    if (readyContext() == nullptr) {
        return; // the list was cut off with the connection
    }
    const bool isOutdated = std::exchange(m_isOutdated, false);
    publish(State::ready, std::move(m_gathering));
    if (isOutdated) {
        refresh();
    }
}

void PulseConnection::publish(State state, PulseInventory inventory)
{
    {
        const std::lock_guard lock(m_mutex);
        m_state = state;
        m_inventory = std::move(inventory);
    }
    m_answered.notify_all();
    for (Watcher *watcher : std::vector(m_watchers)) {
        watcher->soundChanged();
    }
}

} // namespace vesk
