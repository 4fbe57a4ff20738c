#pragma once

#include "Platform/KeyEvents.h"

#include <set>
#include <vector>

namespace vesk {

/// A keyboard under the test's fingers. It reports as late and as often as it is told to: a key that repeats,
/// a release that comes twice.
class FakeKeyEvents final : public KeyEvents {
public:
    Availability availability() const override { return state; }
    Availability availability(int keyCode) const override
    {
        return keyCode == unseenKey ? Availability::unavailable(QStringLiteral("That key is never seen"))
                                    : state;
    }
    bool typesCharacters(int keyCode) const override { return keyCode == altGr; }

    std::unique_ptr<KeyMonitor> addGlobalMonitor(KeyEventHandler handler) override
    {
        ++installed;
        return std::make_unique<Monitor>(*this, std::move(handler));
    }
    std::unique_ptr<KeyMonitor> addLocalMonitor(KeyEventHandler) override { return nullptr; }

    /// A modifier's event as it stands, whatever was down before.
    KeyUse flagsChanged(int keyCode, quint64 flags)
    {
        return send({KeyEventType::flagsChanged, keyCode, flags});
    }
    KeyUse keyDown(int keyCode = 0) { return send({KeyEventType::keyDown, keyCode, 0}); }

    Availability state = Availability::available();
    int unseenKey = -1; ///< never leaves the keyboard
    int altGr = -1;
    int installed = 0;
    int watching() const { return static_cast<int>(m_monitors.size()); }

private:
    class Monitor final : public KeyMonitor {
    public:
        Monitor(FakeKeyEvents &events, KeyEventHandler eventHandler)
            : handler(std::move(eventHandler))
            , m_events(events)
        {
            m_events.m_monitors.push_back(this);
        }
        ~Monitor() override { std::erase(m_events.m_monitors, this); }

        KeyEventHandler handler;

    private:
        FakeKeyEvents &m_events;
    };

    KeyUse send(const KeyEvent &event)
    {
        KeyUse use = KeyUse::ignored;
        for (Monitor *monitor : std::vector(m_monitors)) {
            const KeyEventHandler handler = monitor->handler; // the monitor may end itself
            if (handler(event) == KeyUse::taken) {
                use = KeyUse::taken;
            }
        }
        return use;
    }

    std::vector<Monitor *> m_monitors;
};

} // namespace vesk
