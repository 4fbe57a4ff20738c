#pragma once

#include "Platform/Availability.h"

#include <chrono>
#include <functional>
#include <memory>

namespace vesk {

/// Of what kind a key event is, and the bit it has in an event mask. A modifier key only ever changes flags.
enum class KeyEventType { keyDown = 10, flagsChanged = 12 };

/// One event of the keyboard. Key codes and flags are those of the system that Vesk was first made for: a
/// number for each physical key, whatever the layout, and a bit for each modifier key that is down, left and
/// right apart.
struct KeyEvent {
    KeyEventType type = KeyEventType::keyDown;
    int keyCode = 0;
    quint64 modifierFlags = 0; ///< after the event
    /// How long ago the key moved, so that a busy main thread does not make a hold of a tap; 0 where nobody
    /// knows, and for a release that was made up.
    std::chrono::milliseconds age{0};

    /// Whether the same happened, whenever it was heard of.
    friend bool operator==(const KeyEvent &a, const KeyEvent &b)
    {
        return a.type == b.type && a.keyCode == b.keyCode && a.modifierFlags == b.modifierFlags;
    }
};

/// What became of an event. A key that was taken means something to Vesk alone, so the program with the focus
/// should make nothing of it when it is let go (open its menu bar, say), where the system lets us see to
/// that.
enum class KeyUse { ignored, taken };

using KeyEventHandler = std::function<KeyUse(const KeyEvent &)>;

/// Watches until it is destroyed, also by its own handler.
class KeyMonitor {
public:
    virtual ~KeyMonitor() = default;
};

/// The keyboard of the whole desktop, watched without taking anything away from other programs. Main thread;
/// handlers run on its event loop. A held modifier that is let go unseen (its device was unplugged, the
/// computer slept) is reported as let go. While the screen is locked nothing is reported but that held keys
/// were let go. Monitors must not outlive it.
class KeyEvents {
public:
    virtual ~KeyEvents() = default;

    /// Whether keys can be seen at all.
    virtual Availability availability() const = 0;

    /// Whether this key can be seen; some never leave the keyboard.
    virtual Availability availability(int keyCode) const = 0;

    /// Whether the layout of now uses this modifier key to type further characters, as it does AltGr.
    virtual bool typesCharacters(int keyCode) const = 0;

    /// Events meant for other programs; null when the system has no such thing.
    virtual std::unique_ptr<KeyMonitor> addGlobalMonitor(KeyEventHandler handler) = 0;

    /// Events meant for Vesk's own windows; null where the global monitor sees those as well, so that each
    /// event comes once.
    virtual std::unique_ptr<KeyMonitor> addLocalMonitor(KeyEventHandler handler) = 0;
};

} // namespace vesk
