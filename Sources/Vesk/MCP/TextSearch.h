#pragma once

#include "MCP/FoldedText.h"
#include "MCP/SearchPhrase.h"

#include <QStringList>

namespace vesk {

/// Counts a phrase's matches in one text after the other, and cuts snippets around the first of them. A long
/// text is searched as it comes, in memory that does not grow with it.
class TextSearch {
public:
    /// As many snippets as a note shows.
    static constexpr qsizetype MostSnippets = 3;

    /// How much is to be found out about a text.
    enum class Thoroughness { first, all };

    /// The phrase must outlive this.
    explicit TextSearch(const SearchPhrase &phrase)
        : m_phrase(phrase)
    {
    }

    /// A new text begins.
    void begin();

    /// The text, or a stretch of it. With `first`, no more than one match is counted in each.
    void add(QByteArrayView utf8, bool isLast, Thoroughness thoroughness);

    /// Of the text so far: with its last stretch, matches that do not overlap, from its beginning.
    qsizetype matches() const { return m_matches; }
    const QStringList &snippets() const { return m_snippets; }

private:
    void search(bool isWhole, Thoroughness thoroughness);
    QString snippet(FoldedText::Match match, bool isWhole) const;

    const SearchPhrase &m_phrase;
    bool m_isFresh = true;     // nothing has been kept of the text yet
    QString m_window;          // of the text
    FoldedText m_folded;       // of m_window
    bool m_isFromStart = true; // whether the window begins where the text does
    std::size_t m_from = 0;    // the character of the window where the search goes on
    qsizetype m_matches = 0;
    QStringList m_snippets;
};

} // namespace vesk
