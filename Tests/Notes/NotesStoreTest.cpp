#include "Notes/NotesStore.h"

#include "Notes/NoteFixtures.h"
#include "Support/TemporaryHome.h"

#include <QFileInfo>

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

class NotesStoreTest : public HomeTest {
protected:
    static QStringList titles(const NotesStore &store)
    {
        QStringList titles;
        for (const Note &note : store.notes()) {
            titles.append(note.title);
        }
        return titles;
    }
};

} // namespace

TEST_F(NotesStoreTest, newNotesComeFirstAndChangedOnesKeepTheirPlace)
{
    Note middle = noteOf(2, u"middle"_s);
    for (const Note &note : {noteOf(1, u"old"_s), middle, noteOf(3, u"new"_s)}) {
        putNote(note);
    }
    NotesStore store;
    int changes = 0;
    QObject::connect(&store, &NotesStore::notesChanged, [&changes] { ++changes; });
    const Note old = noteOf(0, u"oldest"_s);
    store.save(old);
    middle.title = u"changed"_s;
    middle.created = {99};
    store.save(middle);
    EXPECT_EQ(titles(store), (QStringList{u"oldest"_s, u"new"_s, u"changed"_s, u"old"_s}));
    EXPECT_EQ(store.note(middle.id), middle);
    store.remove(old.id);
    EXPECT_EQ(store.note(old.id), std::nullopt);
    EXPECT_EQ(changes, 3);
    store.flush();
    EXPECT_FALSE(QFileInfo::exists(Note::file(old.id)));
    EXPECT_EQ(Note::readAll().front(), middle);
    EXPECT_EQ(modeOf(Note::file(middle.id)), 0600);
}

TEST_F(NotesStoreTest, aNoteThatHasNotChangedIsNotWritten)
{
    NotesStore store;
    const Note note = noteOf(1, u"same"_s, {u"hello"_s});
    store.save(note);
    store.flush();
    ASSERT_TRUE(QFile::remove(Note::file(note.id)));
    store.save(note);
    store.flush();
    EXPECT_FALSE(QFileInfo::exists(Note::file(note.id)));
}

TEST_F(NotesStoreTest, whatWasSavedIsOnDiskWhenTheStoreHasGone)
{
    Note note = noteOf(1, u"first"_s);
    {
        NotesStore store;
        for (int i = 0; i < 20; ++i) {
            note.segments.append({1.0 * i, Note::Source::me, u"more"_s});
            store.save(note);
        }
    }
    EXPECT_EQ(Note::readAll(), QList<Note>{note});
}

} // namespace vesk
