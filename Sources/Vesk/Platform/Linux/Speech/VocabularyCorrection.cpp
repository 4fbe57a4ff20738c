#include "Platform/Linux/Speech/VocabularyCorrection.h"

#include "Platform/Linux/Speech/Vocabulary/VocabularyMatch.h"

namespace vesk {

namespace {

std::vector<VocabularyEntry> entriesOf(const QStringList &vocabulary)
{
    std::vector<VocabularyEntry> entries;
    for (const QString &text : vocabulary) {
        if (auto entry = VocabularyEntry::make(text)) {
            entries.push_back(std::move(*entry));
        }
    }
    return entries;
}

/// The person's spelling; a capital that began a sentence stays when the entry has none of its own.
QString written(const VocabularyMatch &match, const HeardWord &first)
{
    QString text = match.entry->written;
    if (match.entry->isAllSmall && first.startsSentence && first.isCapitalised) {
        text.front() = text.front().toUpper();
    }
    if (match.isPlural) {
        text += u's';
    }
    return text;
}

} // namespace

VocabularyCorrection::VocabularyCorrection(const QStringList &vocabulary)
    : m_index(entriesOf(vocabulary))
{
}

QString VocabularyCorrection::corrected(const QString &text) const
{
    if (isEmpty()) {
        return text;
    }
    // An entry that was put in may be the first half of another one; each turn leaves fewer words.
    constexpr int MostTurns = 4;
    QString result = text;
    for (int turn = 0; turn < MostTurns; ++turn) {
        const QString next = correctedOnce(result);
        if (next == result) {
            break;
        }
        result = next;
    }
    return result;
}

QString VocabularyCorrection::correctedOnce(const QString &text) const
{
    const std::vector<HeardWord> words = heardWords(text);
    QString result;
    qsizetype copied = 0;
    for (const VocabularyMatch &match : vocabularyMatches(m_index, words)) {
        if (match.entry->isOrdinary) {
            continue;
        }
        const HeardWord &first = words[match.first];
        const HeardWord &last = words[match.first + match.count - 1];
        result += QStringView(text).mid(copied, first.begin - copied);
        result += written(match, first);
        copied = match.coversEnding ? last.end : last.stemEnd;
    }
    result += QStringView(text).mid(copied);
    return result;
}

} // namespace vesk
