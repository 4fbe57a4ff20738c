#pragma once

#include "Notes/Note.h"

#include <QJsonObject>

namespace vesk {

/// The three tools over a folder of notes. Each call reads the files afresh and writes nothing. Throws
/// Refusal.
class NoteTools {
public:
    explicit NoteTools(QString folder)
        : m_folder(std::move(folder))
    {
    }

    const QString &folder() const { return m_folder; }

    /// The newest notes, and how many there are.
    QJsonObject listNotes(qint64 limit) const;

    /// The newest notes that contain the phrase, with snippets, and how many do.
    QJsonObject searchNotes(const QString &query, qint64 limit) const;

    /// One note as text, its transcript by parts counted from 1.
    QString getNote(const QString &id, qint64 part) const;

private:
    Note readNote(const QString &id) const;

    QString m_folder;
};

} // namespace vesk
