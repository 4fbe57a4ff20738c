#pragma once

#include "Foundation/Task.h"

#include <QFuture>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <list>
#include <memory>
#include <optional>

struct xcb_connection_t;

namespace vesk {

/// What the window in front says about itself and its program.
struct WindowDescription {
    quint32 window = 0;
    qint64 processId = 0; ///< 0 when it does not say
    QString title;
    QString instance;      ///< the first part of WM_CLASS
    QString className;     ///< the second
    QString applicationId; ///< the desktop file that it names, if any

    friend bool operator==(const WindowDescription &, const WindowDescription &) = default;
};

/// Reads the window in front over a connection of its own to the display, without waiting: questions are
/// sent, answers are collected when they arrive. Main thread. A window that is destroyed between two
/// questions is an absent answer; a display that goes away makes every later answer absent and ends nothing.
class ActiveWindow final : public QObject, public std::enable_shared_from_this<ActiveWindow> {
    Q_OBJECT

public:
    /// Connects to the display that the environment names; the only moment at which it is waited for.
    ActiveWindow();
    ~ActiveWindow() override;

    bool isConnected() const;

    /// Nothing when no window is in front or the display does not answer in time.
    Task<std::optional<WindowDescription>> read(std::chrono::milliseconds limit);

private:
    struct Property {
        quint32 type = 0;
        QByteArray value;
    };
    struct Question;
    struct Atoms;

    static Task<std::optional<WindowDescription>> read(std::shared_ptr<ActiveWindow> self,
                                                       std::chrono::milliseconds limit);
    QFuture<Property> ask(quint32 window, quint32 property, std::chrono::steady_clock::time_point end);
    void collect();
    void giveUpLate();

    xcb_connection_t *m_connection;
    quint32 m_root = 0;
    std::unique_ptr<Atoms> m_atoms;
    std::list<Question> m_questions;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_lateness;
};

} // namespace vesk
