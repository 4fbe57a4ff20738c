#include "Dictation/Hotkey.h"

#include <algorithm>

namespace vesk {

Hotkey::Hotkey(KeyEvents &events, Keys keys)
    : m_events(events)
    , m_keys(std::move(keys))
{
}

void Hotkey::start()
{
    stop();
    const auto handler = [this](const KeyEvent &event) { return handle(event); };
    for (auto &monitor : {&KeyEvents::addGlobalMonitor, &KeyEvents::addLocalMonitor}) {
        if (auto handle = (m_events.*monitor)(handler)) {
            m_monitors.push_back(std::move(handle));
        }
    }
}

void Hotkey::stop()
{
    m_monitors.clear();
    m_held.reset();
}

KeyUse Hotkey::handle(const KeyEvent &event)
{
    m_age = event.age;
    if (m_held) {
        handleWhileHeld(*m_held, event);
        return KeyUse::ignored;
    }
    return event.type == KeyEventType::keyDown ? KeyUse::ignored : handleWhileIdle(event);
}

void Hotkey::handleWhileHeld(HotkeyKey held, const KeyEvent &event)
{
    if (event.type == KeyEventType::keyDown || event.keyCode != virtualKeyCode(held)) {
        onOtherKey();
    } else if ((event.modifierFlags & modifierFlag(held)) == 0) {
        m_held.reset();
        onRelease(held);
    }
}

KeyUse Hotkey::handleWhileIdle(const KeyEvent &event)
{
    const std::vector<HotkeyKey> keys = m_keys();
    const auto key = std::ranges::find(keys, event.keyCode, virtualKeyCode);
    if (key == keys.end() || (event.modifierFlags & modifierFlag(*key)) == 0) {
        return KeyUse::ignored;
    }
    m_held = *key;
    onPress(*key);
    return KeyUse::taken;
}

} // namespace vesk
