#include "Platform/Linux/Keys/XTestKeyPoster.h"

#include "Platform/Clock.h"
#include "Platform/Linux/Keys/InjectedKeys.h"

#include <QCoroFuture>
#include <QPromise>

#include <memory>
#include <xcb/xtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

// How often held modifiers are looked at: little against the time a finger takes, nothing for the server.
constexpr std::chrono::milliseconds LookEvery(5);

} // namespace

XTestKeyPoster::XTestKeyPoster(InjectedKeys &injected, Clock &clock)
    : m_injected(injected)
    , m_clock(clock)
    , m_availability(examine())
    , m_queue("vesk.keys")
{
}

XTestKeyPoster::~XTestKeyPoster()
{
    m_queue.async([this] { release(); });
}

Availability XTestKeyPoster::examine()
{
    if (!m_connection.isUsable()) {
        return Availability::unavailable(
            u"Vesk cannot paste into other programs, because there is no X11 display."_s);
    }
    if (!m_connection.hasExtension("XTEST") || !m_keyboard.begin()) {
        return Availability::unavailable(
            u"Vesk cannot paste into other programs, because this display lets no program press keys."_s);
    }
    return Availability::available();
}

Task<bool> XTestKeyPoster::modifiersReleased(std::chrono::milliseconds limit)
{
    const Clock::Monotonic end = m_clock.monotonic() + limit;
    while (true) {
        std::function<bool()> work = [this] { return m_keyboard.isModifierDown(); };
        const QFuture<bool> isDown = perform(std::move(work));
        if (!co_await isDown) {
            co_return true;
        }
        if (m_clock.monotonic() >= end) {
            co_return false;
        }
        co_await m_clock.after(LookEvery);
    }
}

Task<QList<PasteboardName>> XTestKeyPoster::pasteboardsOfFocus()
{
    std::function<bool()> work = [this] {
        const bool isTerminal = m_keyboard.isTerminalFocused();
        chooseChord(isTerminal);
        return isTerminal;
    };
    const QFuture<bool> answer = perform(std::move(work));
    QList<PasteboardName> boards;
    boards.append(PasteboardName::general);
    if (co_await answer) {
        boards.append(PasteboardName::selection);
    }
    co_return boards;
}

Task<bool> XTestKeyPoster::post(int keyCode, quint32 flags, bool isDown)
{
    if (keyCode != PasteKey || flags != CommandFlag) {
        co_return false;
    }
    std::function<bool()> work = [this, isDown] { return isDown ? press() : release(); };
    const QFuture<bool> answer = perform(std::move(work));
    co_return co_await answer;
}

void XTestKeyPoster::chooseChord(bool isTerminal)
{
    if (!m_isPressed) {
        m_chord = m_keyboard.pasteChordFor(isTerminal);
    }
}

bool XTestKeyPoster::press()
{
    if (!m_chord) {
        chooseChord(m_keyboard.isTerminalFocused());
    }
    if (!m_chord || m_isPressed) {
        return false;
    }
    inject(m_chord->modifier, true);
    inject(m_chord->key, true);
    m_connection.flush();
    m_isPressed = true;
    return m_connection.isUsable();
}

bool XTestKeyPoster::release()
{
    if (!m_isPressed) {
        return false;
    }
    inject(m_chord->key, false);
    inject(m_chord->modifier, false);
    m_connection.flush();
    m_isPressed = false;
    m_chord.reset(); // the next press may meet another layout and another program
    return m_connection.isUsable();
}

void XTestKeyPoster::inject(std::uint8_t key, bool isPress)
{
    m_injected.expect(key, isPress);
    xcb_test_fake_input(m_connection.get(), isPress ? XCB_KEY_PRESS : XCB_KEY_RELEASE, key, XCB_CURRENT_TIME,
                        XCB_NONE, 0, 0, 0);
}

template <typename Result>
QFuture<Result> XTestKeyPoster::perform(std::function<Result()> work)
{
    const auto promise = std::make_shared<QPromise<Result>>();
    promise->start();
    m_queue.async([promise, work = std::move(work)] {
        promise->addResult(work());
        promise->finish();
    });
    return promise->future();
}

} // namespace vesk
