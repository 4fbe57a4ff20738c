#pragma once

#include "Foundation/Files.h"
#include "Notes/Note.h"
#include "Notes/NoteEncoder.h"

#include <random>

namespace vesk {

/// A file of any content in the notes folder.
inline void putFile(const QString &name, const QByteArray &content)
{
    Files::makeFolder(Note::folder());
    Files::replace(Note::folder() + u'/' + name, content);
}

inline void putNote(const Note &note) { putFile(Note::identifier(note.id) + u".json", *encodeNote(note)); }

inline Note noteOf(double created, const QString &title, const QStringList &said = {})
{
    Note note;
    note.title = title;
    note.created = {created};
    for (const QString &text : said) {
        const auto start = 5.0 * static_cast<double>(note.segments.size());
        note.segments.append(
            {start, note.segments.size() % 2 == 0 ? Note::Source::me : Note::Source::them, text});
    }
    return note;
}

/// Texts that are easy to get wrong: letters of several scripts and cases, some composed and some not, what
/// JSON escapes, what folds to several letters, emoji that are one character of many.
class StrangeTexts {
public:
    explicit StrangeTexts(unsigned seed)
        : m_dice(seed)
    {
    }

    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(m_dice); }

    QString text(int most)
    {
        static const QStringList Pieces =
            QStringLiteral(
                "a A s S ss SS ß ẞ ſ k K \u212A i I İ ı i\u0307 e é e\u0301 E\u0301 \u0301 \u0323 и И й Й "
                "и\u0306 ё Ё о ᲂ с ᲃ σ ς Σ ᾳ α\u0345 ﬁ fi ﬃ ŉ \u02BCn 각 \u1100\u1161\u11A8 가\u11A8 "
                "👨\u200D👩\u200D👧 👨 👍🏽 👍 🇧🇬 🇬 / \\ \" \u0001 中 x")
                .split(u' ')
            + QStringList{QStringLiteral(" "), QStringLiteral("\n"), QStringLiteral("\r\n"),
                          QStringLiteral("\t")};
        QString made;
        for (int left = below(most + 1); left > 0; --left) {
            made += Pieces[below(static_cast<int>(Pieces.size()))];
        }
        return made;
    }

    Note note()
    {
        Note made = noteOf(7e8 + below(1000), text(6));
        made.duration = below(10'000) / 7.0;
        made.summary = text(12);
        made.thoughts = text(12);
        for (int left = below(6); left > 0; --left) {
            made.segments.append(
                {below(10'000) / 3.0, below(2) == 0 ? Note::Source::me : Note::Source::them, text(14)});
        }
        if (below(3) == 0) {
            made.exchanges.append({QUuid::createUuid(), text(5), text(9)});
        }
        return made;
    }

private:
    std::mt19937 m_dice;
};

} // namespace vesk
