#include "MCP/FoldedText.h"

#include "Foundation/CaseFolding.h"
#include "Foundation/Graphemes.h"

#include <algorithm>

namespace vesk {

void FoldedText::assign(QStringView text)
{
    m_text = text;
    m_starts.clear();
    m_folded.resize(0);
    m_foldedStarts.clear();
    if (Graphemes::areUnits(text)) {
        CaseFolding::appendUnits(text, m_folded, m_foldedStarts);
    } else {
        Graphemes::findStarts(text, m_starts);
        for (std::size_t i = 0; i + 1 < m_starts.size(); ++i) {
            m_foldedStarts.push_back(m_folded.size());
            CaseFolding::append(between(i, i + 1), m_folded);
        }
    }
    m_foldedStarts.push_back(m_folded.size());
}

std::optional<FoldedText::Match> FoldedText::find(const QString &foldedPhrase, std::size_t from) const
{
    const auto begin = m_foldedStarts.begin();
    qsizetype at = m_foldedStarts[from];
    while ((at = m_folded.indexOf(foldedPhrase, at)) >= 0) {
        const auto first = std::lower_bound(begin, m_foldedStarts.end(), at);
        const auto end = std::lower_bound(first, m_foldedStarts.end(), at + foldedPhrase.size());
        if (*first == at && *end == at + foldedPhrase.size()) {
            return Match{static_cast<std::size_t>(first - begin), static_cast<std::size_t>(end - begin)};
        }
        ++at; // a part of a character only: "e" in "é"
    }
    return std::nullopt;
}

} // namespace vesk
