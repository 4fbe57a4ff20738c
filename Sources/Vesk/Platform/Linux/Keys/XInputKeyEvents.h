#pragma once

#include "Platform/KeyEvents.h"
#include "Platform/Linux/Keys/InjectedKeys.h"
#include "Platform/Linux/Keys/KeyboardDisplay.h"
#include "Platform/Linux/Keys/ScreenLock.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <memory>
#include <set>

namespace vesk {

/// Keys through XInput2's raw events: they come whatever program has the focus or grabs the keyboard, and
/// watching them takes nothing from anybody. One connection of its own to the display. Main thread.
class XInputKeyEvents final : public QObject, public KeyEvents {
    Q_OBJECT

public:
    /// `injected` knows the keys that Vesk itself presses; it must outlive this.
    explicit XInputKeyEvents(InjectedKeys &injected);
    ~XInputKeyEvents() override;

    Availability availability() const override { return m_availability; }
    Availability availability(int keyCode) const override;
    bool typesCharacters(int keyCode) const override;
    std::unique_ptr<KeyMonitor> addGlobalMonitor(KeyEventHandler handler) override;
    /// Called when the screen is locked, after the releases of what was held.
    void setLockHandler(std::function<void()> handler) { m_lockHandler = std::move(handler); }
    /// Null: raw events come for our own windows as well.
    std::unique_ptr<KeyMonitor> addLocalMonitor(KeyEventHandler handler) override;

private:
    class Monitor;

    Availability open();
    void readEvents();
    void handleKey(const KeyboardDisplay::Event &event);
    void press(int xKeyCode, std::chrono::milliseconds age);
    void release(int xKeyCode, std::chrono::milliseconds age = {});
    void releaseLostKeys();
    KeyUse report(const KeyEvent &event);
    quint64 flags() const;
    bool isLocked();

    InjectedKeys &m_injected;
    std::unique_ptr<KeyboardDisplay> m_display;
    Availability m_availability = Availability::available();
    ScreenLock m_lock;
    std::function<void()> m_lockHandler;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_lostKeyCheck; ///< runs while a modifier is down
    /// Runs once, soon, after a question from outside.
    std::unique_ptr<QTimer> m_catchUp = std::make_unique<QTimer>();
    std::set<int> m_down; ///< the X key codes of modifiers that were reported as down
    std::set<Monitor *> m_monitors;
};

} // namespace vesk
