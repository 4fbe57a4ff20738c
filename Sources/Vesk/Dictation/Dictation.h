#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QUuid>

namespace vesk {

/// One finished dictation or voice command, as the history keeps it. A plain value.
struct Dictation {
    QUuid id = QUuid::createUuid();
    QDateTime date; ///< when it finished, UTC
    QString kind;   ///< "dictation" or "command"
    QString appName;
    QString raw;        ///< as it was recognised
    QString text;       ///< as it was inserted, without the blanks that join it to its neighbours
    double seconds = 0; ///< length of the recording

    /// One line of JSON, without its end.
    QByteArray encode() const;

    /// Throws DecodingError when a key is missing or its value is of another type.
    static Dictation decode(const QByteArray &line);

    friend bool operator==(const Dictation &, const Dictation &) = default;
};

} // namespace vesk
