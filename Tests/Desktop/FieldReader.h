#pragma once

#include "Desktop/Process.h"

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>

namespace vesk::test {

using namespace Qt::StringLiterals;

/// What stands in the focused field, read by a program of its own with another library than ours, so that it
/// cannot share our mistakes.
class FieldReader {
public:
    FieldReader()
        : m_process(u"/usr/bin/python3"_s, QStringList{QStringLiteral(VESK_TEST_PEERS "/field_reader.py")})
    {
        m_process.readLine(); // "ready"
    }

    /// The focused field of a process: "text", "role", "caret". Nothing when the process shows none.
    std::optional<QJsonObject> focusedField(qint64 processId)
    {
        m_process.write(QByteArray::number(processId) + '\n');
        const QJsonObject answer = QJsonDocument::fromJson(m_process.readLine()).object();
        return answer.isEmpty() ? std::nullopt : std::optional(answer);
    }

    /// The whole text of the focused field once it satisfies the condition; the last text when it does not
    /// within a minute.
    QString textWhen(qint64 processId, const std::function<bool(const QString &)> &condition)
    {
        const QDeadlineTimer deadline(std::chrono::minutes(1));
        QString text;
        do {
            if (const auto field = focusedField(processId)) {
                text = field->value(u"text"_s).toString();
                if (condition(text)) {
                    break;
                }
            }
        } while (!deadline.hasExpired());
        return text;
    }

private:
    Process m_process;
};

} // namespace vesk::test
