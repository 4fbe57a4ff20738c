#include "Platform/Linux/Keys/PasteKey.h"

#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon.h>

namespace vesk {

namespace {

/// The first key that means `symbol` in a layout when pressed alone.
std::optional<std::uint8_t> keyFor(xkb_keymap *keymap, xkb_layout_index_t group, xkb_keysym_t symbol)
{
    constexpr xkb_keycode_t Largest = 255; // what the core protocol can carry
    for (xkb_keycode_t code = xkb_keymap_min_keycode(keymap);
         code <= xkb_keymap_max_keycode(keymap) && code <= Largest; ++code) {
        // A key without letters, such as Insert, has one group that counts for all.
        const xkb_layout_index_t groups = xkb_keymap_num_layouts_for_key(keymap, code);
        if (groups == 0 || (group >= groups && groups > 1)) {
            continue;
        }
        const xkb_keysym_t *symbols = nullptr;
        const xkb_layout_index_t own = group < groups ? group : 0;
        if (xkb_keymap_key_get_syms_by_level(keymap, code, own, 0, &symbols) == 1 && symbols[0] == symbol) {
            return static_cast<std::uint8_t>(code);
        }
    }
    return std::nullopt;
}

std::optional<std::uint8_t> keyForV(xkb_keymap *keymap, xkb_layout_index_t group)
{
    auto key = keyFor(keymap, group, XKB_KEY_v);
    for (xkb_layout_index_t other = 0; !key && other < xkb_keymap_num_layouts(keymap); ++other) {
        key = keyFor(keymap, other, XKB_KEY_v);
    }
    return key;
}

std::optional<PasteChord> chord(std::optional<std::uint8_t> modifier, std::optional<std::uint8_t> key)
{
    return modifier && key ? std::optional(PasteChord{*modifier, *key}) : std::nullopt;
}

} // namespace

std::optional<PasteChord> pasteChord(xkb_keymap *keymap, std::uint32_t group, bool isTerminal)
{
    const auto insert = chord(keyFor(keymap, group, XKB_KEY_Shift_L), keyFor(keymap, group, XKB_KEY_Insert));
    const auto letter = chord(keyFor(keymap, group, XKB_KEY_Control_L), keyForV(keymap, group));
    return isTerminal || !letter ? insert : letter;
}

} // namespace vesk
