#pragma once

#include "Desktop/Process.h"

#include <QJsonObject>

namespace vesk::test {

/// A person who uses a program through the accessibility bus alone, with another library than ours. Each call
/// waits, while the event loop runs, until the control is there; false when it does not come.
class ControlUser {
public:
    explicit ControlUser(qint64 processId);

    /// Until it has acted.
    bool press(const QString &role, const QString &name);
    bool type(const QString &name, const QString &text);
    /// Selects these words where they stand in the text.
    bool select(const QString &name, const QString &words);
    bool finds(const QString &role, const QString &name);
    /// Until the control's text or name contains this.
    bool reads(const QString &role, const QString &name, const QString &text);
    /// As it is now, without waiting.
    bool isThere(const QString &role, const QString &name);
    bool isEnabled(const QString &role, const QString &name);
    bool isChecked(const QString &name);
    /// Until this can be read somewhere in the program's windows, or no longer.
    bool sees(const QString &text);
    bool seesNoLonger(const QString &text);

    /// The roles of controls that take the focus and have no name.
    QStringList namelessControls();

private:
    QJsonObject ask(QJsonObject request);
    bool hasState(const QString &role, const QString &name, const QString &state);
    bool isDone(const QJsonObject &request);
    bool isSeen(const QString &text);

    qint64 m_processId;
    Process m_process;
};

} // namespace vesk::test
