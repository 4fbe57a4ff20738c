#pragma once

#include "Foundation/ReferenceDate.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace vesk {

/// The record of one meeting or call, as one file of the notes folder holds it. A plain value; a new one is
/// empty, begins now and has an identity of its own. Reading and writing block; any thread.
struct Note {
    enum class Source {
        me,   ///< the microphone
        them, ///< what the computer plays
    };

    struct Segment {
        double start = 0; ///< seconds from the note's beginning
        Source source = Source::me;
        QString text;

        friend bool operator==(const Segment &, const Segment &) = default;
    };

    struct Exchange {
        QUuid id = QUuid::createUuid();
        QString question;
        QString answer;

        friend bool operator==(const Exchange &, const Exchange &) = default;
    };

    QUuid id = QUuid::createUuid(); ///< also the file's name
    QString title;                  ///< the person's; may be empty
    ReferenceDate created = ReferenceDate::now();
    double duration = 0;     ///< seconds
    QString thoughts;        ///< what the person typed
    QList<Segment> segments; ///< the transcript, in time order
    QString summary;         ///< the server's; empty when there is none
    QList<Exchange> exchanges;

    friend bool operator==(const Note &, const Note &) = default;

    /// "Notes" inside the program's folder; found once per process.
    static const QString &folder();
    /// The upper-case form in which files and other programs know a note.
    static QString identifier(const QUuid &id);
    /// A UUID in its 36 characters, of either case; nothing for any other text.
    static std::optional<QUuid> identity(QAnyStringView text);
    /// Where the note of that id stands.
    static QString file(const QUuid &id);

    /// All notes that can be read, newest first, those of one moment in the folder's order. On all cores.
    static QList<Note> readAll();

    /// The title, or "New note" when nothing can be seen of it.
    QString displayTitle() const;
    static QString displayTitle(const QString &title);

    /// One line a segment: "[0:05] Me: hello", without the speaker when there is only one.
    QString transcriptText() const;

    /// A duration in seconds for people: "45 s", "12 min", "1 h 5 min".
    static QString length(double seconds);
    /// A place in a recording, in seconds: "0:05", "1:02:03".
    static QString clock(double seconds);

    /// "Me" or "Them".
    static QStringView speaker(Source source);
};

} // namespace vesk
