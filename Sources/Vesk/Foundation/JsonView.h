#pragma once

#include "Foundation/Json.h"

#include <QByteArrayView>

#include <optional>
#include <utility>
#include <vector>

namespace vesk {

/// A JSON value as it stands in its document, spelled as its author spelled it: numbers of any size, escapes,
/// members in their order. For what must come back unchanged, and for looking into a message without building
/// a tree of it. Points into the document, which must outlive it. Each look reads over the value again, so
/// this is not for large documents that are looked into often.
class JsonView {
public:
    enum class Kind { object, array, text, number, boolean, null };

    using Member = std::pair<QString, JsonView>;

    /// Throws DecodingError unless the document is one JSON value (see JsonScanner).
    static JsonView parse(QByteArrayView document);

    Kind kind() const;
    /// The value's own spelling.
    QByteArrayView raw() const { return m_raw; }

    /// Of an object, in their order and with their doubles; none for other kinds.
    std::vector<Member> members() const;
    /// Of an array; none for other kinds.
    std::vector<JsonView> elements() const;
    /// An object's member of that name, the last of several; nothing for other kinds.
    std::optional<JsonView> member(QStringView name) const;

    /// Nothing for another kind.
    std::optional<QString> text() const;
    /// A number without fraction that a qint64 holds, however it is spelled ("1e1"); nothing for others.
    std::optional<qint64> integer() const;

    /// The object with that member replaced or added, compact; of another kind, an object with that member
    /// alone. `value` is JSON.
    QByteArray withMember(QStringView name, QByteArrayView value) const;

    /// The value on several lines, two blanks a level, members sorted by name; numbers and strings as they
    /// were spelled, but for slashes, which are not escaped.
    QByteArray prettyPrinted() const;

private:
    explicit JsonView(QByteArrayView raw)
        : m_raw(raw)
    {
    }

    void print(QByteArray &into, qsizetype indentation) const;

    QByteArrayView m_raw;
};

} // namespace vesk
