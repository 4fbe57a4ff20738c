#include "Desktop/Screen.h"

#include <QDeadlineTimer>
#include <QRegularExpression>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <poll.h>
#include <stdexcept>
#include <vector>

namespace vesk::test {

namespace {

constexpr int LongestPause = 50; // ms; some changes, like a title, come without an event on the root window

/// Windows of other programs go away between two questions: that is no reason to end the test.
int ignoreError(Display *, XErrorEvent *) { return 0; }

struct Property {
    std::vector<unsigned long> numbers;
    QByteArray bytes;
};

Property property(Display *display, Window window, const char *name)
{
    Property result;
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char *data = nullptr;
    const Atom atom = XInternAtom(display, name, False);
    if (XGetWindowProperty(display, window, atom, 0, 4096, False, AnyPropertyType, &type, &format, &count,
                           &left, &data)
            == Success
        && data != nullptr) {
        if (format == 32) {
            const auto *numbers = reinterpret_cast<const unsigned long *>(data);
            result.numbers.assign(numbers, numbers + count);
        } else if (format == 8) {
            result.bytes = QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(count));
        }
        XFree(data);
    }
    return result;
}

/// From the lowest to the one on top.
std::vector<Window> children(Display *display, Window window)
{
    Window root = None;
    Window parent = None;
    Window *list = nullptr;
    unsigned count = 0;
    if (XQueryTree(display, window, &root, &parent, &list, &count) == 0) {
        return {};
    }
    std::vector<Window> result(list, list + count);
    if (list != nullptr) {
        XFree(list);
    }
    return result;
}

} // namespace

struct Screen::State {
    Display *display = XOpenDisplay(nullptr);
};

Screen::Screen()
    : m_state(std::make_unique<State>())
{
    if (m_state->display == nullptr) {
        throw std::runtime_error("the display does not answer");
    }
    XSetErrorHandler(ignoreError);
    XSelectInput(m_state->display, root(), PropertyChangeMask | SubstructureNotifyMask);
}

Screen::Window Screen::root() const { return DefaultRootWindow(m_state->display); }

Screen::~Screen() { XCloseDisplay(m_state->display); }

bool Screen::waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        pollfd ready = {ConnectionNumber(m_state->display), POLLIN, 0};
        if (XPending(m_state->display) == 0) {
            poll(&ready, 1, LongestPause);
        }
        while (XPending(m_state->display) > 0) {
            XEvent event;
            XNextEvent(m_state->display, &event);
        }
    }
    return true;
}

bool Screen::waitForRootProperty(const char *name, std::chrono::milliseconds limit)
{
    return waitUntil([&] { return !property(m_state->display, root(), name).numbers.empty(); }, limit);
}

QString Screen::title(Window window) const
{
    const QByteArray modern = property(m_state->display, window, "_NET_WM_NAME").bytes;
    return modern.isEmpty() ? QString::fromLatin1(property(m_state->display, window, "WM_NAME").bytes)
                            : QString::fromUtf8(modern);
}

std::optional<Screen::Window> Screen::find(const QString &title) const
{
    const QRegularExpression pattern(title);
    for (const Window window : property(m_state->display, root(), "_NET_CLIENT_LIST").numbers) {
        if (pattern.match(this->title(window)).hasMatch()) {
            return window;
        }
    }
    return std::nullopt;
}

std::optional<Screen::Window> Screen::waitForWindow(const QString &title, std::chrono::milliseconds limit)
{
    std::optional<Window> window;
    waitUntil([&] { return (window = find(title)).has_value(); }, limit);
    return window;
}

bool Screen::waitForNoWindow(const QString &title, std::chrono::milliseconds limit)
{
    return waitUntil([&] { return !find(title).has_value(); }, limit);
}

std::optional<Screen::Window> Screen::activeWindow() const
{
    const auto numbers = property(m_state->display, root(), "_NET_ACTIVE_WINDOW").numbers;
    return numbers.empty() || numbers.front() == 0 ? std::nullopt : std::optional(numbers.front());
}

bool Screen::activate(Window window, std::chrono::milliseconds limit)
{
    XEvent message = {};
    message.xclient.type = ClientMessage;
    message.xclient.window = window;
    message.xclient.message_type = XInternAtom(m_state->display, "_NET_ACTIVE_WINDOW", False);
    message.xclient.format = 32;
    message.xclient.data.l[0] = 2; // a pager asks: the window manager does not call it stealing
    XSendEvent(m_state->display, root(), False, SubstructureNotifyMask | SubstructureRedirectMask, &message);
    XFlush(m_state->display);
    return waitUntil([&] { return activeWindow() == window; }, limit);
}

void Screen::key(int keyCode, bool isDown)
{
    XTestFakeKeyEvent(m_state->display, static_cast<unsigned>(keyCode), isDown ? True : False, CurrentTime);
    XSync(m_state->display, False);
}

std::shared_ptr<void> Screen::grabKeyboard()
{
    Display *display = m_state->display;
    if (XGrabKeyboard(display, root(), False, GrabModeAsync, GrabModeAsync, CurrentTime) != GrabSuccess) {
        throw std::runtime_error("the keyboard cannot be grabbed");
    }
    return {display, [](void *held) {
                XUngrabKeyboard(static_cast<Display *>(held), CurrentTime);
                XSync(static_cast<Display *>(held), False);
            }};
}

std::optional<Screen::Seen> Screen::seen(const QString &title) const { return seenBelow(root(), title); }

std::optional<Screen::Seen> Screen::seenBelow(Window parent, const QString &title) const
{
    for (const Window window : children(m_state->display, parent)) {
        XWindowAttributes attributes = {};
        if (XGetWindowAttributes(m_state->display, window, &attributes) == 0
            || attributes.map_state != IsViewable) {
            continue;
        }
        if (this->title(window) == title) {
            int x = 0;
            int y = 0;
            Window child = None;
            XTranslateCoordinates(m_state->display, window, root(), 0, 0, &x, &y, &child);
            return Seen{window, QRect(x, y, attributes.width, attributes.height),
                        attributes.override_redirect == 0};
        }
        if (const auto inside = seenBelow(window, title)) {
            return inside;
        }
    }
    return std::nullopt;
}

bool Screen::isOnTop(Window window) const
{
    const std::vector<Window> stack = children(m_state->display, root());
    for (auto above = stack.rbegin(); above != stack.rend() && *above != window; ++above) {
        XWindowAttributes attributes = {};
        if (XGetWindowAttributes(m_state->display, *above, &attributes) != 0
            && attributes.map_state == IsViewable && attributes.c_class == InputOutput) {
            return false;
        }
    }
    return true;
}

void Screen::movePointer(int x, int y)
{
    XTestFakeMotionEvent(m_state->display, -1, x, y, CurrentTime);
    XSync(m_state->display, False);
}

void Screen::click(int x, int y)
{
    movePointer(x, y);
    XTestFakeButtonEvent(m_state->display, 1, True, CurrentTime);
    XTestFakeButtonEvent(m_state->display, 1, False, CurrentTime);
    XSync(m_state->display, False);
}

} // namespace vesk::test
