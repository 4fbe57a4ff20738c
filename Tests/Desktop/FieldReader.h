#pragma once

#include "Desktop/Process.h"

#include <QJsonObject>

#include <optional>

namespace vesk::test {

/// What stands in the focused field, read by a program of its own with another library than ours, so that it
/// cannot share our mistakes.
class FieldReader {
public:
    FieldReader();

    /// The focused field of a process: "text", "role", "caret". Nothing when the process shows none.
    std::optional<QJsonObject> focusedField(qint64 processId);

    /// The whole text of the focused field once it satisfies the condition; the last text when it does not
    /// within a minute.
    QString textWhen(qint64 processId, const std::function<bool(const QString &)> &condition);

private:
    Process m_process;
};

} // namespace vesk::test
