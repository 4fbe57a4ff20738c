#pragma once

#include <QRect>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace vesk::test {

/// The display as the person in front of it uses it: windows that appear, and keys that go down and up. A
/// connection of its own, so that it stays true when the program under test blocks its own.
class Screen {
public:
    using Window = unsigned long;
    static constexpr std::chrono::seconds Patience{60}; ///< only a failing test waits so long

    /// On the display of the environment. Throws std::runtime_error.
    Screen();
    ~Screen();
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    bool waitForRootProperty(const char *name, std::chrono::milliseconds limit = Patience);

    /// The window whose title matches the regular expression, once the window manager shows it.
    std::optional<Window> waitForWindow(const QString &title, std::chrono::milliseconds limit = Patience);

    /// Brings a window to the front and waits until the window manager says that it is active.
    bool activate(Window window, std::chrono::milliseconds limit = Patience);
    std::optional<Window> activeWindow() const;

    bool waitForNoWindow(const QString &title, std::chrono::milliseconds limit = Patience);

    /// Keys by X key code: a keysym's place depends on the layout, a key's does not. Right Alt is 108.
    void keyDown(int keyCode) { key(keyCode, true); }
    void keyUp(int keyCode) { key(keyCode, false); }
    void tap(int keyCode)
    {
        keyDown(keyCode);
        keyUp(keyCode);
    }

    /// As an open menu does, until what is returned is gone.
    std::shared_ptr<void> grabKeyboard();

    /// A window that is shown, also one that the window manager does not manage or that stands in another.
    struct Seen {
        Window id = 0;
        QRect frame;           ///< on the screen
        bool isManaged = true; ///< false when it goes past the window manager
    };
    /// The window of exactly that title.
    std::optional<Seen> seen(const QString &title) const;
    /// Whether nothing that is shown stands above it.
    bool isOnTop(Window window) const;

    void movePointer(int x, int y);

    /// Moves the pointer there and clicks with the first button.
    void click(int x, int y);

    /// The title of a window as its program set it.
    QString title(Window window) const;

    /// Waits for changes on the display until the condition holds.
    bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds limit = Patience);

private:
    Window root() const;
    void key(int keyCode, bool isDown);
    std::optional<Window> find(const QString &title) const;
    std::optional<Seen> seenBelow(Window parent, const QString &title) const;

    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vesk::test
