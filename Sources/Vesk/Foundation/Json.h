#pragma once

#include "Foundation/UserError.h"

#include <QJsonObject>
#include <QStringList>

#include <optional>

namespace vesk {

/// JSON that does not hold what a reader needs. The sentence names the key and what stood there instead.
class DecodingError final : public SentenceError {
public:
    using SentenceError::SentenceError;
};

namespace Json {

/// The object that the document is. Throws DecodingError with line and column for malformed JSON, and for a
/// document that is no object.
QJsonObject object(const QByteArray &document);

/// Compact text of an object or array, UTF-8.
QByteArray compact(const QJsonValue &value);

/// A text as JSON spells it, in its quotation marks.
QByteArray quoted(const QString &text);

} // namespace Json

/// Reads typed members of one object. The plain readers throw DecodingError when the key is missing, null or
/// of another type; the optional ones give nothing for a missing key or null and throw for another type.
/// Unknown keys do not matter.
class JsonReader {
public:
    /// `path` is where the object stands in its document, for the sentence of an error; empty at the root.
    explicit JsonReader(QJsonObject object, QString path = {});

    QString string(QLatin1StringView key) const;
    bool boolean(QLatin1StringView key) const;
    /// A number without fraction that a qint64 holds.
    qint64 integer(QLatin1StringView key) const;
    double number(QLatin1StringView key) const;

    std::optional<QString> optionalString(QLatin1StringView key) const;
    std::optional<bool> optionalBoolean(QLatin1StringView key) const;
    std::optional<QStringList> optionalStrings(QLatin1StringView key) const;
    std::optional<JsonReader> optionalObject(QLatin1StringView key) const;

private:
    QString pathOf(QLatin1StringView key) const;
    [[noreturn]] void fail(QLatin1StringView key, QStringView expected, const QJsonValue &found) const;
    QJsonValue present(QLatin1StringView key, QStringView expected) const;

    QJsonObject m_object;
    QString m_path;
};

} // namespace vesk
