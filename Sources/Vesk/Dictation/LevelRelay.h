#pragma once

#include <QObject>

#include <atomic>
#include <functional>
#include <memory>

namespace vesk {

/// Brings the loudness of the microphone from the sound library's thread to the main thread. Only the newest
/// value waits there: a main thread that is busy finds one call, not a hundred.
class LevelRelay {
public:
    /// `receive` runs on the thread that makes the relay, as long as the relay lives.
    explicit LevelRelay(std::function<void(float)> receive)
        : m_shared(std::make_shared<Shared>(std::move(receive)))
    {
    }

    /// To be called on any thread, also after the relay has gone.
    std::function<void(float)> sender() const
    {
        return [weak = std::weak_ptr(m_shared)](float level) {
            const auto shared = weak.lock();
            if (!shared) {
                return;
            }
            shared->newest.store(level);
            if (!shared->isOnItsWay.exchange(true)) {
                QMetaObject::invokeMethod(
                    shared->context.get(), [weak] { deliver(weak); }, Qt::QueuedConnection);
            }
        };
    }

private:
    struct Shared {
        explicit Shared(std::function<void(float)> receiver)
            : receive(std::move(receiver))
        {
        }
        std::function<void(float)> receive;
        std::atomic<float> newest = 0;
        std::atomic<bool> isOnItsWay = false;
        /// May lose its last owner on another thread, where a QObject must not end at once.
        std::unique_ptr<QObject, void (*)(QObject *)> context{new QObject,
                                                              [](QObject *object) { object->deleteLater(); }};
    };

    static void deliver(const std::weak_ptr<Shared> &weak)
    {
        if (const auto shared = weak.lock()) {
            shared->isOnItsWay.store(false);
            shared->receive(shared->newest.load());
        }
    }

    std::shared_ptr<Shared> m_shared;
};

} // namespace vesk
