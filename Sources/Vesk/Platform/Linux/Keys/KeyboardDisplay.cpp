#include "Platform/Linux/Keys/KeyboardDisplay.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <algorithm>
#include <initializer_list>
#include <vector>

namespace vesk {

namespace {

struct XFreeDeleter {
    void operator()(void *data) const { XFree(data); }
};
template <typename T>
using XPointer = std::unique_ptr<T, XFreeDeleter>;

/// Windows of others vanish between two questions about them; Xlib would end the process.
int ignoreError(Display *, XErrorEvent *) { return 0; }

void select(Display *display, int device, std::initializer_list<int> events)
{
    std::vector<unsigned char> bits(XIMaskLen(XI_LASTEVENT));
    for (const int event : events) {
        bits[static_cast<std::size_t>(event >> 3)] |= static_cast<unsigned char>(1U << (event & 7));
    }
    XIEventMask mask = {device, static_cast<int>(bits.size()), bits.data()};
    XISelectEvents(display, DefaultRootWindow(display), &mask, 1);
}

void selectEvents(Display *display)
{
    // Raw keys not of every device: each would come twice, once for its keyboard and once for all together.
    // Changes of devices are told for all of them only.
    select(display, XIAllMasterDevices, {XI_RawKeyPress, XI_RawKeyRelease});
    select(display, XIAllDevices, {XI_HierarchyChanged});
    XFlush(display);
}

} // namespace

struct KeyboardDisplay::State {
    /// Nothing can be said to a display that has gone, not even goodbye.
    ~State()
    {
        if (display != nullptr && isAlive) {
            XCloseDisplay(display);
        }
    }

    Display *display = nullptr;
    int inputOpcode = 0;
    bool isAlive = true;
    std::optional<int> unusedKey; ///< 0: none; nothing: to be looked for again
};

KeyboardDisplay::KeyboardDisplay(std::unique_ptr<State> state)
    : m_state(std::move(state))
{
}

KeyboardDisplay::~KeyboardDisplay() = default;

std::unique_ptr<KeyboardDisplay> KeyboardDisplay::open()
{
    auto state = std::make_unique<State>();
    state->display = XOpenDisplay(nullptr);
    if (state->display == nullptr) {
        return nullptr;
    }
    Display *display = state->display;
    XSetErrorHandler(ignoreError);
    XSetIOErrorExitHandler(
        display, [](Display *, void *data) { static_cast<State *>(data)->isAlive = false; }, state.get());
    int event = 0;
    int error = 0;
    int major = 2;
    int minor = 2;
    if (XQueryExtension(display, "XInputExtension", &state->inputOpcode, &event, &error) == False
        || XIQueryVersion(display, &major, &minor) != Success) {
        return nullptr;
    }
    selectEvents(display);
    return std::unique_ptr<KeyboardDisplay>(new KeyboardDisplay(std::move(state)));
}

int KeyboardDisplay::descriptor() const { return ConnectionNumber(m_state->display); }

bool KeyboardDisplay::isAlive() const { return m_state->isAlive; }

std::optional<KeyboardDisplay::Event> KeyboardDisplay::nextEvent()
{
    Display *display = m_state->display;
    while (m_state->isAlive && XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type == MappingNotify) {
            XRefreshKeyboardMapping(&event.xmapping);
            m_state->unusedKey.reset();
        }
        if (event.type != GenericEvent || event.xcookie.extension != m_state->inputOpcode
            || XGetEventData(display, &event.xcookie) == False) {
            continue;
        }
        const int type = event.xcookie.evtype;
        Event found = {Event::devicesChanged, 0, 0};
        if (type != XI_HierarchyChanged) {
            const auto *key = static_cast<const XIRawEvent *>(event.xcookie.data);
            found.keyCode = key->detail;
            found.time = static_cast<unsigned>(key->time);
        }
        XFreeEventData(display, &event.xcookie);
        switch (type) {
        case XI_RawKeyRelease: found.kind = Event::release; return found;
        case XI_RawKeyPress: found.kind = Event::press; return found;
        case XI_HierarchyChanged: return found;
        default: break;
        }
    }
    return std::nullopt;
}

bool KeyboardDisplay::isDown(int keyCode) const
{
    char keys[32] = {};
    XQueryKeymap(m_state->display, keys);
    return (static_cast<unsigned char>(keys[keyCode / 8]) >> (keyCode % 8) & 1U) != 0;
}

bool KeyboardDisplay::opensMenuWhenAlone(int keyCode) const
{
    constexpr KeySym MenuKeys[] = {XK_Alt_L,   XK_Alt_R,   XK_Meta_L,  XK_Meta_R,
                                   XK_Super_L, XK_Super_R, XK_Hyper_L, XK_Hyper_R};
    const KeySym symbol = XkbKeycodeToKeysym(m_state->display, static_cast<KeyCode>(keyCode), 0, 0);
    return std::ranges::find(MenuKeys, symbol) != std::end(MenuKeys);
}

// Asked of the display itself: Xlib's copy of the keyboard grows old until its events are read.
bool KeyboardDisplay::choosesCharacters(int keyCode) const
{
    int count = 0;
    const XPointer<KeySym> symbols(
        XGetKeyboardMapping(m_state->display, static_cast<KeyCode>(keyCode), 1, &count));
    return symbols && std::any_of(symbols.get(), symbols.get() + count, [](KeySym symbol) {
               return symbol == XK_ISO_Level3_Shift || symbol == XK_ISO_Level5_Shift
                   || symbol == XK_Mode_switch;
           });
}

int KeyboardDisplay::unusedKey() const
{
    Display *display = m_state->display;
    int lowest = 0;
    int highest = 0;
    XDisplayKeycodes(display, &lowest, &highest);
    int symbolsPerKey = 0;
    const XPointer<KeySym> symbols(
        XGetKeyboardMapping(display, static_cast<KeyCode>(lowest), highest - lowest + 1, &symbolsPerKey));
    const std::unique_ptr<XModifierKeymap, decltype(&XFreeModifiermap)> modifiers(
        XGetModifierMapping(display), XFreeModifiermap);
    if (!symbols || !modifiers) {
        return 0;
    }
    const KeyCode *modifierKeys = modifiers->modifiermap;
    const KeyCode *modifiersEnd = modifierKeys + 8L * modifiers->max_keypermod;
    for (int key = highest; key >= lowest; --key) {
        const KeySym *first = symbols.get() + static_cast<std::ptrdiff_t>(key - lowest) * symbolsPerKey;
        const bool hasSymbol =
            std::any_of(first, first + symbolsPerKey, [](KeySym symbol) { return symbol != NoSymbol; });
        if (!hasSymbol && std::find(modifierKeys, modifiersEnd, key) == modifiersEnd) {
            return key;
        }
    }
    return 0;
}

void KeyboardDisplay::tapUnusedKey(InjectedKeys &injected)
{
    if (!m_state->unusedKey) {
        m_state->unusedKey = unusedKey();
    }
    const int key = *m_state->unusedKey;
    if (key == 0) {
        return;
    }
    Display *display = m_state->display;
    injected.expect(key, true);
    injected.expect(key, false);
    XTestFakeKeyEvent(display, static_cast<unsigned>(key), True, CurrentTime);
    XTestFakeKeyEvent(display, static_cast<unsigned>(key), False, CurrentTime);
    XSync(display, False); // a busy display may take another program's keys first, the release among them
}

bool KeyboardDisplay::isCoveredByLocker() const
{
    Display *display = m_state->display;
    const Window root = DefaultRootWindow(display);
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char *data = nullptr;
    // xscreensaver's protocol: the first item is BLANK or LOCK while it covers the screen.
    const Atom status = XInternAtom(display, "_SCREENSAVER_STATUS", True);
    if (status != None
        && XGetWindowProperty(display, root, status, 0, 1, False, XA_INTEGER, &type, &format, &count, &left,
                              &data)
            == Success) {
        const XPointer<unsigned char> owned(data);
        if (count == 1
            && *reinterpret_cast<const unsigned long *>(data) == XInternAtom(display, "LOCK", False)) {
            return true;
        }
    }
    Window rootAgain = None;
    Window parent = None;
    Window *children = nullptr;
    unsigned childCount = 0;
    if (XQueryTree(display, root, &rootAgain, &parent, &children, &childCount) == 0) {
        return false;
    }
    const XPointer<Window> owned(children);
    XWindowAttributes screen = {};
    XGetWindowAttributes(display, root, &screen);
    for (unsigned i = childCount; i > 0; --i) { // from the front
        XWindowAttributes window = {};
        if (XGetWindowAttributes(display, children[i - 1], &window) == 0 || window.map_state != IsViewable
            || window.c_class != InputOutput) {
            continue;
        }
        return window.override_redirect != False && window.x <= 0 && window.y <= 0
            && window.width >= screen.width && window.height >= screen.height;
    }
    return false;
}

} // namespace vesk
