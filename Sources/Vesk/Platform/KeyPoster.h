#pragma once

#include "Foundation/Task.h"
#include "Platform/Availability.h"
#include "Platform/Pasteboard.h"

#include <QList>

#include <chrono>

namespace vesk {

/// Presses keys on the person's behalf in the program that has the focus. Main thread.
class KeyPoster {
public:
    /// The key that pastes together with the Command flag: the one in the V position.
    static constexpr int PasteKey = 9;
    static constexpr quint32 CommandFlag = 0x100000;

    virtual ~KeyPoster() = default;

    virtual Availability availability() const = 0;

    /// True as soon as the person holds no modifier key down; false when one is still down after `limit`. A
    /// modifier that is locked, as Caps Lock is, does not count.
    virtual Task<bool> modifiersReleased(std::chrono::milliseconds limit) = 0;

    /// The boards that the paste key of the program with the focus may read, the general one first. The next
    /// presses of PasteKey with CommandFlag are meant for the same program.
    virtual Task<QList<PasteboardName>> pasteboardsOfFocus() = 0;

    /// Presses or lets go a key with exactly these modifiers. False when this keyboard has no such key; then
    /// nothing was posted.
    virtual Task<bool> post(int keyCode, quint32 flags, bool isDown) = 0;
};

} // namespace vesk
