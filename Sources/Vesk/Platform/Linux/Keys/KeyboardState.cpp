#include "Platform/Linux/Keys/KeyboardState.h"

#include "Platform/Linux/Keys/TerminalPrograms.h"

#include <QList>

#include <xkbcommon/xkbcommon-x11.h>

namespace vesk {

namespace {

struct XkbFree {
    void operator()(xkb_context *context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap *keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state *state) const { xkb_state_unref(state); }
};

constexpr int LockRow = 1; // of the eight rows of modifiers: Shift, Lock, Control, Mod1 to Mod5

} // namespace

bool KeyboardState::begin()
{
    return xkb_x11_setup_xkb_extension(m_connection.get(), XKB_X11_MIN_MAJOR_XKB_VERSION,
                                       XKB_X11_MIN_MINOR_XKB_VERSION, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
                                       nullptr, nullptr, nullptr, nullptr)
        == 1;
}

bool KeyboardState::isModifierDown()
{
    xcb_connection_t *connection = m_connection.get();
    const auto keysAsked = xcb_query_keymap(connection);
    const auto modifiersAsked = xcb_get_modifier_mapping(connection);
    const XcbPointer<xcb_query_keymap_reply_t> keys(xcb_query_keymap_reply(connection, keysAsked, nullptr));
    const XcbPointer<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(connection, modifiersAsked, nullptr));
    if (!keys || !modifiers) {
        return false;
    }
    const xcb_keycode_t *codes = xcb_get_modifier_mapping_keycodes(modifiers.get());
    const int perRow = modifiers->keycodes_per_modifier;
    for (int i = 0; i < 8 * perRow; ++i) {
        const xcb_keycode_t code = codes[i];
        if (i / perRow != LockRow && code != 0 && (keys->keys[code / 8] & (1 << code % 8)) != 0) {
            return true;
        }
    }
    return false;
}

bool KeyboardState::isTerminalFocused()
{
    const auto names = classOf(focusedWindow());
    if (!names) {
        return false;
    }
    const QList<QByteArray> parts = names->split('\0'); // instance and class, each with an end
    return isTerminal(parts.value(0), parts.value(1));
}

xcb_window_t KeyboardState::focusedWindow()
{
    const auto active = m_connection.property(m_connection.root(), m_connection.atom("_NET_ACTIVE_WINDOW"));
    if (active && active->format == 32 && xcb_get_property_value_length(active.get()) >= 4) {
        return *static_cast<const xcb_window_t *>(xcb_get_property_value(active.get()));
    }
    const XcbPointer<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(m_connection.get(), xcb_get_input_focus(m_connection.get()), nullptr));
    return focus ? focus->focus : static_cast<xcb_window_t>(XCB_NONE);
}

/// WM_CLASS of the window or of the nearest one around it: without a window manager the focus may be on a
/// window inside the one that carries it.
std::optional<QByteArray> KeyboardState::classOf(xcb_window_t window)
{
    while (window > XCB_INPUT_FOCUS_POINTER_ROOT && window != m_connection.root()) {
        if (const auto names = m_connection.property(window, XCB_ATOM_WM_CLASS)) {
            return QByteArray(static_cast<const char *>(xcb_get_property_value(names.get())),
                              xcb_get_property_value_length(names.get()));
        }
        const XcbPointer<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(m_connection.get(), xcb_query_tree(m_connection.get(), window), nullptr));
        if (!tree) {
            break;
        }
        window = tree->parent;
    }
    return std::nullopt;
}

std::optional<PasteChord> KeyboardState::pasteChordFor(bool isTerminal)
{
    xcb_connection_t *connection = m_connection.get();
    const std::int32_t keyboard = xkb_x11_get_core_keyboard_device_id(connection);
    const std::unique_ptr<xkb_context, XkbFree> context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    if (keyboard < 0 || !context) {
        return std::nullopt;
    }
    const std::unique_ptr<xkb_keymap, XkbFree> keymap(
        xkb_x11_keymap_new_from_device(context.get(), connection, keyboard, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap) {
        return std::nullopt;
    }
    const std::unique_ptr<xkb_state, XkbFree> state(
        xkb_x11_state_new_from_device(keymap.get(), connection, keyboard));
    const xkb_layout_index_t group =
        state ? xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_EFFECTIVE) : 0;
    return pasteChord(keymap.get(), group, isTerminal);
}

} // namespace vesk
