#include "MCP/TextSearch.h"

#include "Foundation/Text.h"

#include <algorithm>

namespace vesk {

namespace {

/// What a snippet shows before and behind its match.
constexpr std::size_t Surroundings = 70;

/// A long text is searched when this much of it has come, in UTF-16 units.
constexpr qsizetype LongText = 64L * 1024;

} // namespace

void TextSearch::begin()
{
    if (m_isFresh) { // most texts are left out by their bytes
        return;
    }
    m_isFresh = true;
    m_window.resize(0);
    m_isFromStart = true;
    m_from = 0;
    m_matches = 0;
    m_snippets.clear();
}

void TextSearch::add(QByteArrayView utf8, bool isLast, Thoroughness thoroughness)
{
    if (thoroughness == Thoroughness::first && m_matches > 0) {
        return;
    }
    const bool isWhole = isLast && m_isFromStart && m_window.isEmpty();
    if (isWhole && !m_phrase.mayBeInText(utf8)) {
        return;
    }
    m_isFresh = false;
    Text::appendUtf8(utf8, m_window);
    if (isLast || m_window.size() >= LongText) {
        search(isLast, thoroughness);
    }
}

/// Searches the window. Until the text's end has come, matches are left for later that do not have all that
/// their snippet shows behind them, and the window's last character, which may not be complete; then the
/// window loses what is done with.
void TextSearch::search(bool isWhole, Thoroughness thoroughness)
{
    m_folded.assign(m_window);
    const std::size_t size = m_folded.size();
    const std::size_t unsure = isWhole ? 0 : std::min(size, Surroundings + 1);
    while (const auto match = m_folded.find(m_phrase.folded(), m_from)) {
        if (match->end > size - unsure) {
            break;
        }
        ++m_matches;
        if (m_snippets.size() < MostSnippets) {
            m_snippets.append(snippet(*match, isWhole));
        }
        m_from = match->end;
        if (thoroughness == Thoroughness::first) {
            return;
        }
    }
    if (!isWhole) {
        // A match has at most as many characters as the folded phrase has units.
        const std::size_t undecided = unsure + static_cast<std::size_t>(m_phrase.folded().size());
        m_from = std::max(m_from, size - std::min(size, undecided));
        const std::size_t kept = m_from - std::min(m_from, Surroundings);
        m_isFromStart = m_isFromStart && kept == 0;
        m_window.remove(0, m_folded.unitOf(kept));
        m_from -= kept;
    }
}

QString TextSearch::snippet(FoldedText::Match match, bool isWhole) const
{
    const std::size_t first = match.first - std::min(match.first, Surroundings);
    const std::size_t end = std::min(match.end + Surroundings, m_folded.size());
    QStringList lines;
    for (const QStringView line : Text::nonEmptyLines(m_folded.between(first, end))) {
        lines.append(line.toString());
    }
    const bool isCutBefore = first > 0 || !m_isFromStart;
    const bool isCutBehind = end < m_folded.size() || !isWhole;
    return (isCutBefore ? u"..." : u"") + lines.join(u' ') + (isCutBehind ? u"..." : u"");
}

} // namespace vesk
