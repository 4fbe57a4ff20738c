#pragma once

#include "Platform/Linux/Keys/InjectedKeys.h"

#include <memory>
#include <optional>

namespace vesk {

/// A connection to the X display for looking at its keyboard. Keys are X key codes. One thread at a time;
/// every question is one round trip to the display, well below a millisecond.
class KeyboardDisplay {
public:
    struct Event {
        enum Kind { press, release, devicesChanged } kind;
        int keyCode;
        unsigned time; ///< the display's, in milliseconds; starts anew every 49 days
    };

    /// Null without a display or without XInput 2.2.
    static std::unique_ptr<KeyboardDisplay> open();
    ~KeyboardDisplay();
    KeyboardDisplay(const KeyboardDisplay &) = delete;
    KeyboardDisplay &operator=(const KeyboardDisplay &) = delete;

    /// Readable when events wait.
    int descriptor() const;
    /// False once the display has gone.
    bool isAlive() const;

    /// The next of the events that have arrived; nothing when there is none.
    std::optional<Event> nextEvent();

    bool isDown(int keyCode) const;

    /// Whether programs and desktops open a menu when this key is let go and no other was used meanwhile.
    bool opensMenuWhenAlone(int keyCode) const;

    /// Whether the layout uses this key to reach a key's third and further characters.
    bool choosesCharacters(int keyCode) const;

    /// Presses and lets go a key that means nothing in any layout, so that the key held now was not used
    /// alone. Does nothing where every key means something.
    void tapUnusedKey(InjectedKeys &injected);

    /// Whether a screen locker without a voice on the bus covers the screen: a window in front of all others,
    /// of the whole screen's size, that the window manager has no say in, or xscreensaver's mark.
    bool isCoveredByLocker() const;

private:
    struct State;
    explicit KeyboardDisplay(std::unique_ptr<State> state);

    int unusedKey() const;

    std::unique_ptr<State> m_state;
};

} // namespace vesk
