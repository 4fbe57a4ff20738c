#pragma once

#include <QList>
#include <QString>

namespace vesk::Text {

/// Every run of white space becomes one blank, none stays at either end.
QString collapsed(QStringView text);

/// The text's lines that are not empty, cut at every line break that Unicode knows.
QList<QStringView> nonEmptyLines(QStringView text);

/// Appends text in UTF-8 as it is, a byte order mark at its beginning included.
void appendUtf8(QByteArrayView utf8, QString &into);

/// The length without a character at the end that is not complete yet.
qsizetype wholeCharacters(QByteArrayView utf8);

/// The system's own reason for an error number, without a full stop: "No space left on device".
QString systemReason(int errorNumber);

/// What a diagnostic may call a file: its name without the folders, or the whole path when it has no name.
QString fileName(const QString &path);

} // namespace vesk::Text
