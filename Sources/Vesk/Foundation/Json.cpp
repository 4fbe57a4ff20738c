#include "Foundation/Json.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

QString nameOfType(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Null: return u"null"_s;
    case QJsonValue::Bool: return value.toBool() ? u"true"_s : u"false"_s;
    case QJsonValue::Double: return u"a number"_s;
    case QJsonValue::String: return u"a text"_s;
    case QJsonValue::Array: return u"a list"_s;
    case QJsonValue::Object: return u"an object"_s;
    case QJsonValue::Undefined: return u"nothing"_s;
    }
    Q_UNREACHABLE();
}

QString mismatch(QStringView path, QStringView expected, const QJsonValue &found)
{
    return u"\"" + path + u"\" must be " + expected + u", not " + nameOfType(found);
}

} // namespace

QJsonObject Json::object(const QByteArray &document)
{
    QJsonParseError error;
    const QJsonDocument parsed = QJsonDocument::fromJson(document, &error);
    if (error.error != QJsonParseError::NoError) {
        const QByteArrayView before =
            QByteArrayView(document).first(std::min<qsizetype>(error.offset, document.size()));
        const qsizetype line = before.count('\n') + 1;
        const qsizetype column = before.size() - before.lastIndexOf('\n');
        throw DecodingError(
            u"not valid JSON at line %1, column %2: %3"_s.arg(line).arg(column).arg(error.errorString()));
    }
    if (!parsed.isObject()) {
        throw DecodingError(u"not a JSON object"_s);
    }
    return parsed.object();
}

QByteArray Json::compact(const QJsonValue &value)
{
    const QJsonDocument document =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    return document.toJson(QJsonDocument::Compact);
}

QByteArray Json::quoted(const QString &text)
{
    return compact(QJsonArray{text}).chopped(1).sliced(1); // without the list's brackets
}

JsonReader::JsonReader(QJsonObject object, QString path)
    : m_object(std::move(object))
    , m_path(std::move(path))
{
}

QString JsonReader::pathOf(QLatin1StringView key) const
{
    return m_path.isEmpty() ? QString(key) : QString(m_path + u'.' + key);
}

void JsonReader::fail(QLatin1StringView key, QStringView expected, const QJsonValue &found) const
{
    throw DecodingError(mismatch(pathOf(key), expected, found));
}

QJsonValue JsonReader::present(QLatin1StringView key, QStringView expected) const
{
    const QJsonValue value = m_object.value(key);
    if (value.isUndefined() || value.isNull()) {
        fail(key, expected, value);
    }
    return value;
}

std::optional<QString> JsonReader::optionalString(QLatin1StringView key) const
{
    const QJsonValue value = m_object.value(key);
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    if (!value.isString()) {
        fail(key, u"a text", value);
    }
    return value.toString();
}

std::optional<bool> JsonReader::optionalBoolean(QLatin1StringView key) const
{
    const QJsonValue value = m_object.value(key);
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    if (!value.isBool()) {
        fail(key, u"true or false", value);
    }
    return value.toBool();
}

std::optional<QStringList> JsonReader::optionalStrings(QLatin1StringView key) const
{
    const QJsonValue value = m_object.value(key);
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    if (!value.isArray()) {
        fail(key, u"a list of texts", value);
    }
    QStringList strings;
    for (const QJsonValue element : value.toArray()) {
        if (!element.isString()) {
            const QString path = u"%1[%2]"_s.arg(pathOf(key)).arg(strings.size());
            throw DecodingError(mismatch(path, u"a text", element));
        }
        strings.append(element.toString());
    }
    return strings;
}

std::optional<JsonReader> JsonReader::optionalObject(QLatin1StringView key) const
{
    const QJsonValue value = m_object.value(key);
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    if (!value.isObject()) {
        fail(key, u"an object", value);
    }
    return JsonReader(value.toObject(), pathOf(key));
}

QString JsonReader::string(QLatin1StringView key) const
{
    const auto value = optionalString(key);
    return value ? *value : (fail(key, u"a text", m_object.value(key)), QString());
}

bool JsonReader::boolean(QLatin1StringView key) const
{
    const auto value = optionalBoolean(key);
    return value ? *value : (fail(key, u"true or false", m_object.value(key)), false);
}

double JsonReader::number(QLatin1StringView key) const
{
    const QJsonValue value = present(key, u"a number");
    if (!value.isDouble()) {
        fail(key, u"a number", value);
    }
    return value.toDouble();
}

qint64 JsonReader::integer(QLatin1StringView key) const
{
    const QJsonValue value = present(key, u"a whole number");
    // QJsonValue keeps integers exactly; asked for two different defaults, a fraction shows itself.
    if (!value.isDouble() || value.toInteger(0) != value.toInteger(1)) {
        fail(key, u"a whole number", value);
    }
    return value.toInteger();
}

} // namespace vesk
