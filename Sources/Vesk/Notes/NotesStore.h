#pragma once

#include "Foundation/SerialQueue.h"
#include "Notes/Note.h"

#include <QObject>

#include <optional>

namespace vesk {

/// All notes of the application, in memory, and on disk as they change. Main thread. The list is the truth
/// while the program runs: what another program does to the files is seen at the next start. Encoding and
/// writing happen on the queue "vesk.notes", in the order of the calls; failures are silent, as
/// Storage::write's are.
class NotesStore final : public QObject {
    Q_OBJECT

public:
    /// Loads Note::readAll().
    NotesStore();

    /// The application's store, made by the first call and never destroyed. What was saved is on disk before
    /// the process ends by exit() or by returning from main(); what ends it otherwise calls flushShared().
    static NotesStore &shared();

    /// flush() of the application's store, if one was made.
    static void flushShared();

    /// Newest first as they were loaded; later ones stand in front.
    const QList<Note> &notes() const { return m_notes; }

    std::optional<Note> note(const QUuid &id) const;

    /// Takes in a new note, or the changed form of one, which keeps its place. Does nothing when nothing has
    /// changed. Returns before the file is written; see flush().
    void save(const Note &note);

    /// Forgets the note and deletes its file.
    void remove(const QUuid &id);

    /// Waits until everything is on disk.
    void flush();

Q_SIGNALS:
    /// After notes() has become another list.
    void notesChanged();

private:
    QList<Note> m_notes;
    SerialQueue m_files{"vesk.notes"};
};

} // namespace vesk
