#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace vesk {

/// A text folded for comparison that still knows its user-perceived characters: matches begin and end between
/// them, and snippets are cut there. Keeps its buffers from text to text. All positions are counted in such
/// characters.
class FoldedText {
public:
    struct Match {
        std::size_t first = 0;
        std::size_t end = 0; ///< one behind the last character
    };

    /// The text must outlive what is asked about it.
    void assign(QStringView text);

    std::size_t size() const { return m_foldedStarts.size() - 1; }

    /// The first match of a folded phrase, which is not empty, that begins at or behind `from`.
    std::optional<Match> find(const QString &foldedPhrase, std::size_t from) const;

    /// Where a character begins in the text, in UTF-16 units.
    qsizetype unitOf(std::size_t character) const
    {
        return m_starts.empty() ? static_cast<qsizetype>(character) : m_starts[character];
    }

    /// The characters from `first` to before `end`.
    QStringView between(std::size_t first, std::size_t end) const
    {
        return m_text.sliced(unitOf(first), unitOf(end) - unitOf(first));
    }

private:
    QStringView m_text;
    std::vector<qsizetype> m_starts; // empty when each UTF-16 unit is a character
    QString m_folded;
    std::vector<qsizetype> m_foldedStarts = {0}; // of each character in m_folded, and its end
};

} // namespace vesk
