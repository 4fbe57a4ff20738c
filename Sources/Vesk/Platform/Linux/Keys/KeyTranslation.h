#pragma once

#include <QtGlobal>

#include <optional>
#include <vector>

namespace vesk {

/// A modifier key in the words of key events.
struct ModifierKey {
    int keyCode;
    quint64 flag;
};

/// What the X key code of a modifier stands for, by its place on the keyboard (evdev's code and 8): what a
/// key is called changes with the layout, right Alt is AltGr in most of Europe. Right Control and right Super
/// both stand for the right Command key. Nothing for every other key.
std::optional<ModifierKey> modifierKey(int xKeyCode);

/// The X key codes of the modifiers that stand for this key code.
std::vector<int> xKeyCodes(int keyCode);

/// The key code of a key that is no modifier: nobody asks which it was.
inline constexpr int OtherKeyCode = 0xFFFF;

/// KEY_FN of the kernel has a number that X cannot express.
inline constexpr int FunctionKeyCode = 63;

} // namespace vesk
