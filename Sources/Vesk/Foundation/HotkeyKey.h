#pragma once

#include <QStringView>

#include <array>
#include <optional>

namespace vesk {

/// The modifier keys that can start dictation or a voice command. The raw value, as it stands in the settings
/// file, is the case's own name.
enum class HotkeyKey { rightOption, rightCommand, fn };

/// Every key, in the order in which settings offer them.
inline constexpr std::array<HotkeyKey, 3> AllHotkeyKeys = {HotkeyKey::rightOption, HotkeyKey::rightCommand,
                                                           HotkeyKey::fn};

QString rawValue(HotkeyKey key);

/// The number of the physical key in a key event.
int virtualKeyCode(HotkeyKey key);

/// The bit of an event's modifier flags that is set while that very key is down: the right-hand keys have
/// bits of their own, so that the left Option key never looks like the right one.
quint64 modifierFlag(HotkeyKey key);

/// Nothing when the text is not exactly one of the three raw values.
std::optional<HotkeyKey> hotkeyKey(QStringView text);

} // namespace vesk
