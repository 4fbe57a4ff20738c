#pragma once

#include "Foundation/SerialQueue.h"
#include "Platform/KeyPoster.h"
#include "Platform/Linux/Keys/KeyboardState.h"

#include <QFuture>

#include <functional>

namespace vesk {

class Clock;
class InjectedKeys;

/// Presses keys by the XTEST extension, on the thread "vesk.keys" with a connection of its own. Knows one
/// key, the paste key with Command; any other cannot be made.
class XTestKeyPoster final : public KeyPoster {
public:
    /// Tells `injected` of every event before it makes it; both must outlive this object.
    XTestKeyPoster(InjectedKeys &injected, Clock &clock);
    /// Lets go what is still pressed.
    ~XTestKeyPoster() override;

    Availability availability() const override { return m_availability; }
    Task<bool> modifiersReleased(std::chrono::milliseconds limit) override;
    Task<QList<PasteboardName>> pasteboardsOfFocus() override;
    Task<bool> post(int keyCode, quint32 flags, bool isDown) override;

private:
    template <typename Result>
    QFuture<Result> perform(std::function<Result()> work);
    Availability examine();
    void chooseChord(bool isTerminal);
    bool press();
    bool release();
    void inject(std::uint8_t key, bool isPress);

    InjectedKeys &m_injected;
    Clock &m_clock;

    // The thread's alone once it runs:
    XcbConnection m_connection;
    KeyboardState m_keyboard{m_connection};
    std::optional<PasteChord> m_chord;
    bool m_isPressed = false;

    const Availability m_availability;
    SerialQueue m_queue; ///< last: what it still runs uses the rest
};

} // namespace vesk
