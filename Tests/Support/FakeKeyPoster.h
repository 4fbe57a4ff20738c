#pragma once

#include "Platform/Clock.h"
#include "Platform/KeyPoster.h"

#include <algorithm>
#include <functional>

namespace vesk {

/// A keyboard that nobody sees, and a person who holds modifier keys for a while. Main thread.
class FakeKeyPoster final : public KeyPoster {
public:
    struct Post {
        int keyCode;
        quint32 flags;
        bool isDown;
        friend bool operator==(const Post &, const Post &) = default;
    };

    explicit FakeKeyPoster(Clock &clock)
        : m_clock(clock)
    {
    }

    std::chrono::milliseconds held{0}; ///< how long the person holds a modifier from now on
    QList<PasteboardName> pasteboards{PasteboardName::general};
    std::vector<Post> posts;
    std::function<void()> onPress; ///< what the other program does at the key-down

    Availability availability() const override { return Availability::available(); }

    Task<bool> modifiersReleased(std::chrono::milliseconds limit) override
    {
        const bool isReleased = held <= limit;
        if (held.count() > 0) {
            const auto waited = std::min(held, limit);
            co_await m_clock.after(waited);
            held -= waited;
        }
        co_return isReleased;
    }

    Task<QList<PasteboardName>> pasteboardsOfFocus() override
    {
        // QCoro 0.8 moves out of the variable that is returned.
        co_return QList<PasteboardName>(pasteboards);
    }

    Task<bool> post(int keyCode, quint32 flags, bool isDown) override
    {
        if (keyCode != PasteKey || flags != CommandFlag) {
            co_return false;
        }
        posts.push_back({keyCode, flags, isDown});
        if (isDown && onPress) {
            onPress();
        }
        co_return true;
    }

private:
    Clock &m_clock;
};

} // namespace vesk
