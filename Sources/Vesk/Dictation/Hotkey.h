#pragma once

#include "Foundation/HotkeyKey.h"
#include "Platform/KeyEvents.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vesk {

/// Watches the keyboard of the whole desktop for the keys that start dictation and voice commands, and says
/// when one went down, when it came up, and when another key was used in between. What a short or a double
/// tap means is not known here. Main thread; one for the life of the application, which owns it.
class Hotkey {
public:
    using Keys = std::function<std::vector<HotkeyKey>()>;

    /// `keys` is asked at every press, so that changed settings count at once. The events must outlive this.
    Hotkey(KeyEvents &events, Keys keys);

    std::function<void(HotkeyKey)> onPress = [](HotkeyKey) {};
    std::function<void(HotkeyKey)> onRelease = [](HotkeyKey) {};
    std::function<void()> onOtherKey = [] {};

    /// How long ago the keyboard said what the running callback is told.
    std::chrono::milliseconds age() const { return m_age; }

    /// Starts watching, afresh if it did already.
    void start();
    void stop();

private:
    KeyUse handle(const KeyEvent &event);
    void handleWhileHeld(HotkeyKey held, const KeyEvent &event);
    KeyUse handleWhileIdle(const KeyEvent &event);

    KeyEvents &m_events;
    Keys m_keys;
    std::vector<std::unique_ptr<KeyMonitor>> m_monitors;
    std::chrono::milliseconds m_age{0};
    std::optional<HotkeyKey> m_held; ///< at most one: a second watched key is another key
};

} // namespace vesk
