#include "Desktop/FieldReader.h"

#include <QDeadlineTimer>
#include <QJsonDocument>

namespace vesk::test {

FieldReader::FieldReader()
    : m_process(QStringLiteral("/usr/bin/python3"),
                {{QStringLiteral(VESK_TEST_PEERS "/field_reader.py")}, QProcess::SeparateChannels, {}, {}})
{
    m_process.readLine(); // "ready"
}

std::optional<QJsonObject> FieldReader::focusedField(qint64 processId)
{
    m_process.write(QByteArray::number(processId) + '\n');
    const QJsonObject answer = QJsonDocument::fromJson(m_process.readLine()).object();
    return answer.isEmpty() ? std::nullopt : std::optional(answer);
}

QString FieldReader::textWhen(qint64 processId, const std::function<bool(const QString &)> &condition)
{
    const QDeadlineTimer deadline(std::chrono::minutes(1));
    QString text;
    do {
        if (const auto field = focusedField(processId)) {
            text = field->value(QStringLiteral("text")).toString();
            if (condition(text)) {
                break;
            }
        }
    } while (!deadline.hasExpired());
    return text;
}

} // namespace vesk::test
