#include "Platform/Linux/Keys/XInputKeyEvents.h"

#include "Foundation/Log.h"
#include "Platform/Linux/Keys/KeyTranslation.h"
#include "Platform/Linux/Keys/KeyboardDisplay.h"

#include <algorithm>
#include <chrono>
#include <vector>

namespace vesk {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

/// How long a lost release may stay unnoticed; asked only while a key is down.
constexpr auto LostKeyInterval = 200ms;

/// A display on this machine counts the milliseconds of the monotonic clock, so that its time tells how long
/// an event has waited for us. One elsewhere counts from another beginning; what cannot be a wait is none.
std::chrono::milliseconds ageOf(unsigned displayTime)
{
    using namespace std::chrono;
    const auto now = duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
    const milliseconds age(static_cast<unsigned>(now) - displayTime);
    return age <= 10s ? age : 0ms;
}

} // namespace

class XInputKeyEvents::Monitor final : public KeyMonitor {
public:
    Monitor(XInputKeyEvents &events, KeyEventHandler eventHandler)
        : handler(std::make_shared<KeyEventHandler>(std::move(eventHandler)))
        , m_events(events)
    {
        m_events.m_monitors.insert(this);
    }
    ~Monitor() override { m_events.m_monitors.erase(this); }

    const std::shared_ptr<KeyEventHandler> handler; ///< outlives the monitor while it runs

private:
    XInputKeyEvents &m_events;
};

XInputKeyEvents::XInputKeyEvents(InjectedKeys &injected)
    : m_injected(injected)
{
    m_availability = open();
    m_lostKeyCheck.setInterval(LostKeyInterval);
    connect(&m_lostKeyCheck, &QTimer::timeout, this, [this] {
        releaseLostKeys();
        readEvents(); // what came along with the answers wakes nobody
    });
    m_catchUp->setSingleShot(true);
    connect(m_catchUp.get(), &QTimer::timeout, this, &XInputKeyEvents::readEvents);
    connect(&m_lock, &ScreenLock::changed, this, [this] {
        if (m_lock.isLocked()) {
            for (const int key : std::set(m_down)) {
                release(key);
            }
            if (m_lockHandler) {
                m_lockHandler();
            }
        }
    });
}

XInputKeyEvents::~XInputKeyEvents() = default;

Availability XInputKeyEvents::open()
{
    if (qEnvironmentVariable("XDG_SESSION_TYPE") == u"wayland") {
        return Availability::unavailable(
            u"Vesk cannot see the keyboard in a Wayland session yet. Choose an X11 (Xorg) "
            "session when you log in."_s);
    }
    m_display = KeyboardDisplay::open();
    if (!m_display) {
        return Availability::unavailable(
            u"Vesk cannot see the keyboard: this session has no X11 display with "
            "XInput 2.2."_s);
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_display->descriptor(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &XInputKeyEvents::readEvents);
    return Availability::available();
}

Availability XInputKeyEvents::availability(int keyCode) const
{
    if (m_availability.isAvailable() && keyCode == FunctionKeyCode) {
        return Availability::unavailable(
            u"The fn key cannot be used here: the keyboard does not tell the desktop "
            "about it."_s);
    }
    return m_availability;
}

bool XInputKeyEvents::typesCharacters(int keyCode) const
{
    m_catchUp->start(); // for the events that come along with the answers
    return m_display && m_display->isAlive() && std::ranges::any_of(xKeyCodes(keyCode), [this](int xKeyCode) {
               return m_display->choosesCharacters(xKeyCode);
           });
}

std::unique_ptr<KeyMonitor> XInputKeyEvents::addGlobalMonitor(KeyEventHandler handler)
{
    if (!m_display) {
        return nullptr;
    }
    readEvents(); // what happened until now is not for this monitor
    return std::make_unique<Monitor>(*this, std::move(handler));
}

std::unique_ptr<KeyMonitor> XInputKeyEvents::addLocalMonitor(KeyEventHandler) { return nullptr; }

void XInputKeyEvents::readEvents()
{
    if (!m_display || !m_notifier->isEnabled()) {
        return;
    }
    while (const auto event = m_display->nextEvent()) {
        switch (event->kind) {
        case KeyboardDisplay::Event::press:
        case KeyboardDisplay::Event::release: handleKey(*event); break;
        case KeyboardDisplay::Event::devicesChanged: releaseLostKeys(); break;
        }
    }
    if (!m_display->isAlive()) {
        m_notifier->setEnabled(false);
        m_availability =
            Availability::unavailable(u"The display has gone, so Vesk cannot see the keyboard."_s);
        Log::write(u"keys: the display has gone"_s);
    }
}

void XInputKeyEvents::handleKey(const KeyboardDisplay::Event &event)
{
    const bool isPress = event.kind == KeyboardDisplay::Event::press;
    if (m_injected.take(event.keyCode, isPress)) {
        return;
    }
    if (isPress) {
        press(event.keyCode, ageOf(event.time));
    } else {
        release(event.keyCode, ageOf(event.time));
    }
}

void XInputKeyEvents::press(int xKeyCode, std::chrono::milliseconds age)
{
    const auto modifier = modifierKey(xKeyCode);
    // Whether the screen is locked costs round trips, too many for every letter that a person types: other
    // keys mean something only while a modifier is held, which was not locked then.
    const bool meansSomething = modifier || !m_down.empty();
    if (m_monitors.empty() || m_down.contains(xKeyCode)
        || (meansSomething ? isLocked() : m_lock.isLocked())) {
        return;
    }
    if (!modifier) {
        report({KeyEventType::keyDown, OtherKeyCode, flags(), age});
        return;
    }
    m_down.insert(xKeyCode);
    m_lostKeyCheck.start();
    if (report({KeyEventType::flagsChanged, modifier->keyCode, flags(), age}) == KeyUse::taken
        && m_display->opensMenuWhenAlone(xKeyCode)) {
        m_display->tapUnusedKey(m_injected);
    }
}

void XInputKeyEvents::release(int xKeyCode, std::chrono::milliseconds age)
{
    if (m_down.erase(xKeyCode) == 0) {
        return; // went down before anybody watched, or its release was made up
    }
    if (m_down.empty()) {
        m_lostKeyCheck.stop();
    }
    if (const auto modifier = modifierKey(xKeyCode)) {
        report({KeyEventType::flagsChanged, modifier->keyCode, flags(), age});
    }
}

void XInputKeyEvents::releaseLostKeys()
{
    for (const int key : std::set(m_down)) {
        if (!m_display->isDown(key)) {
            release(key);
        }
    }
}

KeyUse XInputKeyEvents::report(const KeyEvent &event)
{
    std::vector<std::shared_ptr<KeyEventHandler>> handlers;
    handlers.reserve(m_monitors.size());
    for (const Monitor *monitor : m_monitors) {
        handlers.push_back(monitor->handler);
    }
    KeyUse use = KeyUse::ignored;
    for (const auto &handler : handlers) {
        if ((*handler)(event) == KeyUse::taken) {
            use = KeyUse::taken;
        }
    }
    return use;
}

quint64 XInputKeyEvents::flags() const
{
    quint64 flags = 0;
    for (const int key : m_down) {
        flags |= modifierKey(key)->flag;
    }
    return flags;
}

bool XInputKeyEvents::isLocked() { return m_lock.isLocked() || m_display->isCoveredByLocker(); }

} // namespace vesk
