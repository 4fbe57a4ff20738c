#include "Notes/NotesStore.h"

#include "Foundation/Storage.h"
#include "Notes/NoteEncoder.h"

#include <QFile>

#include <algorithm>
#include <cstdlib>

namespace vesk {

namespace {

/// Never destroyed, like the log: its last files are written by the exit handler.
NotesStore *theStore = nullptr;

auto withId(const QUuid &id)
{
    return [id](const Note &note) { return note.id == id; };
}

} // namespace

NotesStore::NotesStore()
    : m_notes(Note::readAll())
{
}

NotesStore &NotesStore::shared()
{
    if (theStore == nullptr) {
        theStore = new NotesStore;
        std::atexit(flushShared);
    }
    return *theStore;
}

void NotesStore::flushShared()
{
    if (theStore != nullptr) {
        theStore->flush();
    }
}

std::optional<Note> NotesStore::note(const QUuid &id) const
{
    const auto found = std::find_if(m_notes.begin(), m_notes.end(), withId(id));
    return found == m_notes.end() ? std::nullopt : std::optional(*found);
}

void NotesStore::save(const Note &note)
{
    const auto found = std::find_if(m_notes.begin(), m_notes.end(), withId(note.id));
    if (found == m_notes.end()) {
        m_notes.prepend(note);
    } else if (*found == note) {
        return;
    } else {
        *found = note;
    }
    // Qt's strings and lists are shared between threads without copying the text.
    m_files.async([note] {
        if (const std::optional<QByteArray> content = encodeNote(note)) {
            Storage::write(*content, Note::file(note.id));
        }
    });
    Q_EMIT notesChanged();
}

void NotesStore::remove(const QUuid &id)
{
    const bool isGone = m_notes.removeIf(withId(id)) > 0;
    m_files.async([id] { QFile::remove(Note::file(id)); });
    if (isGone) {
        Q_EMIT notesChanged();
    }
}

void NotesStore::flush()
{
    m_files.sync([] {});
}

} // namespace vesk
