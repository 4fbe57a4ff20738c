#pragma once

#include <cstdint>
#include <optional>

struct xkb_keymap;

namespace vesk {

/// Two X key codes that paste together.
struct PasteChord {
    std::uint8_t modifier = 0;
    std::uint8_t key = 0;

    friend bool operator==(const PasteChord &, const PasteChord &) = default;
};

/// The keys that paste on this keyboard while `group` (from 0) is the layout in use. Control and the key that
/// types "v"; where this layout has none but another of the person's has, Control and that one's, which
/// programs understand because those who type in two scripts press it all day; otherwise, and in terminals,
/// for which Control and a letter is input, Shift and Insert. Nothing when the keyboard has neither.
std::optional<PasteChord> pasteChord(xkb_keymap *keymap, std::uint32_t group, bool isTerminal);

} // namespace vesk
