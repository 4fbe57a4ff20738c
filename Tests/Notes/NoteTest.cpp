#include "Notes/Note.h"

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

TEST(NoteTest, durationsReadAsPeopleSayThem)
{
    const std::pair<double, QString> lengths[] = {
        {0, u"0 s"_s},
        {59.9, u"59 s"_s},
        {60, u"1 min"_s},
        {89, u"1 min"_s},
        {90, u"2 min"_s},
        {3569, u"59 min"_s},
        {3570, u"1 h 0 min"_s},
        {3900, u"1 h 5 min"_s},
        {-3.5, u"-3 s"_s},
        {90'000, u"25 h 0 min"_s},
        {1e300, u"16666666666666 h 40 min"_s},
    };
    for (const auto &[seconds, text] : lengths) {
        EXPECT_EQ(Note::length(seconds), text) << seconds;
    }
    const std::pair<double, QString> clocks[] = {
        {5, u"0:05"_s}, {750, u"12:30"_s}, {3599.9, u"59:59"_s}, {3600, u"1:00:00"_s}, {3723, u"1:02:03"_s},
    };
    for (const auto &[seconds, text] : clocks) {
        EXPECT_EQ(Note::clock(seconds), text) << seconds;
    }
}

TEST(NoteTest, aDateIsShownInUtcWithoutItsFraction)
{
    EXPECT_EQ(ReferenceDate{791543107.999}.iso8601(), u"2026-01-31T09:05:07Z"_s);
    EXPECT_EQ(ReferenceDate{-0.5}.iso8601(), u"2000-12-31T23:59:59Z"_s);
    EXPECT_EQ(ReferenceDate{1e300}.iso8601(), u"9999-12-31T23:59:59Z"_s);
    EXPECT_EQ(ReferenceDate{-1e300}.iso8601(), u"0001-01-01T00:00:00Z"_s);
}

TEST(NoteTest, speakersAreNamedWhenThereAreTwo)
{
    Note note;
    EXPECT_EQ(note.transcriptText(), QString());
    note.segments = {{5, Note::Source::me, u"hello"_s}, {70, Note::Source::me, u"anyone?"_s}};
    EXPECT_EQ(note.transcriptText(), u"[0:05] hello\n[1:10] anyone?"_s);
    note.segments.append({80, Note::Source::them, u"yes"_s});
    EXPECT_EQ(note.transcriptText(), u"[0:05] Me: hello\n[1:10] Me: anyone?\n[1:20] Them: yes"_s);
}

} // namespace vesk
