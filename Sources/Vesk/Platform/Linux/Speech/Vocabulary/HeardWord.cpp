#include "Platform/Linux/Speech/Vocabulary/HeardWord.h"

#include "Platform/Linux/Speech/Vocabulary/Letters.h"
#include "Platform/Linux/Speech/Vocabulary/Phonetics.h"

#include <QString>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vesk {

namespace {

constexpr qsizetype LongestAcronym = 5;

bool isWordSign(QChar c) { return c.isLetterOrNumber() || c.isMark(); }

bool isApostrophe(QChar c) { return c == u'\'' || c == u'’'; }

qsizetype wordEnd(QStringView text, qsizetype begin)
{
    qsizetype end = begin;
    while (end < text.size()
           && (isWordSign(text[end])
               || (isApostrophe(text[end]) && end + 1 < text.size() && text[end + 1].isLetter()))) {
        ++end;
    }
    return end;
}

bool startsSentence(QStringView before)
{
    qsizetype i = before.size();
    bool isParted = false;
    while (i > 0 && (before[i - 1].isSpace() || u"\"'“”‘’«»()[]"_s.contains(before[i - 1]))) {
        --i;
        isParted = isParted || before[i].isSpace();
        if (before[i] == u'\n') {
            return true;
        }
    }
    return i == 0 || (isParted && u".!?…"_s.contains(before[i - 1]));
}

/// Whether two words with this between them may be one.
bool joins(QStringView between)
{
    const auto isBlank = [](QChar c) { return c == u' ' || c == QChar::Nbsp; };
    return between == u"-" || between == u"."
        || (!between.isEmpty() && std::ranges::all_of(between, isBlank));
}

/// Signs of addresses, paths and code: what stands among them is not prose.
bool isInAddress(QStringView text, qsizetype begin, qsizetype end)
{
    const auto isBinding = [](QChar c) { return u"@/\\_#$=~+&|{}"_s.contains(c); };
    while (begin > 0 && !text[begin - 1].isSpace()) {
        --begin;
    }
    while (end < text.size() && !text[end].isSpace()) {
        ++end;
    }
    return std::any_of(text.begin() + begin, text.begin() + end, isBinding);
}

bool isCompound(std::string_view word)
{
    constexpr std::size_t Shortest = 4;
    for (std::size_t i = Shortest; i + Shortest <= word.size(); ++i) {
        if (wordKind(word.substr(0, i)) == WordKind::ordinary
            && wordKind(word.substr(i)) == WordKind::ordinary) {
            return true;
        }
    }
    return false;
}

/// "We met Mark": a capital that no rule of writing asks for makes an ordinary word a name.
bool isUsedAsName(const HeardWord &word, const HeardWord &before)
{
    return word.kind == WordKind::ordinary && word.isCapitalised && !word.startsSentence
        && word.followsClosely && !before.isCapitalised && isAlsoName(word.stem);
}

/// How the word is said when the recogniser's spelling is believed: "QQoro" is Q Qoro.
std::string soundsOf(QStringView text, std::string_view letters)
{
    const std::vector<QString> parts = Letters::parts(text);
    if (parts.size() < 2) {
        return Phonetics::english(letters);
    }
    std::string sounds;
    for (const QString &part : parts) {
        sounds += Phonetics::english(Letters::folded(part));
    }
    return sounds;
}

/// "don't", "we'll", "I'm", "o'clock"; "O'Brien" and "D'Arcy" go on with a capital.
bool isContraction(QStringView text)
{
    const auto apostrophe = std::ranges::find_if(text, isApostrophe);
    return apostrophe != text.end()
        && std::all_of(apostrophe + 1, text.end(), [](QChar c) { return c.isLower(); });
}

HeardWord heardWord(QStringView text, qsizetype begin, qsizetype end)
{
    HeardWord word;
    word.begin = begin;
    word.end = end;
    const QStringView whole = text.mid(begin, end - begin);
    const bool hasEnding =
        whole.size() > 2 && isApostrophe(whole[whole.size() - 2]) && whole.back().toLower() == u's';
    word.stemEnd = hasEnding ? end - 2 : end;
    const QStringView stem = text.mid(begin, word.stemEnd - begin);
    word.letters = Letters::key(whole);
    word.stem = Letters::key(stem);
    word.isCapitalised = whole.front().isUpper();
    word.isAcronym = stem.size() >= 2 && stem.size() <= LongestAcronym
        && std::ranges::all_of(stem, [](QChar c) { return c.isUpper(); });
    word.canBeMisheard =
        !word.stem.empty() && std::ranges::all_of(word.stem, [](char c) { return c >= 'a' && c <= 'z'; });
    word.kind = isContraction(stem) ? WordKind::ordinary : wordKind(word.stem);
    word.isCompound = word.kind == WordKind::unknown && isCompound(word.stem);
    word.sounds = word.canBeMisheard ? soundsOf(stem, word.stem) : std::string();
    return word;
}

} // namespace

std::vector<HeardWord> heardWords(QStringView text)
{
    std::vector<HeardWord> words;
    for (qsizetype begin = 0; begin < text.size();) {
        if (!isWordSign(text[begin])) {
            ++begin;
            continue;
        }
        const qsizetype end = wordEnd(text, begin);
        HeardWord word = heardWord(text, begin, end);
        word.startsSentence = startsSentence(text.left(begin));
        const bool isInside = isInAddress(text, begin, end);
        word.followsDot = begin > 1 && text[begin - 1] == u'.' && isWordSign(text[begin - 2]);
        const bool isDotAfter = end + 1 < text.size() && text[end] == u'.' && isWordSign(text[end + 1]);
        word.isBoundBefore = isInside || word.followsDot;
        word.isBoundAfter = isInside || isDotAfter;
        if (!words.empty()) {
            const qsizetype last = words.back().end;
            word.followsClosely = joins(text.mid(last, begin - last));
            if (isUsedAsName(word, words.back())) {
                word.kind = WordKind::name;
            }
        }
        words.push_back(std::move(word));
        begin = end;
    }
    return words;
}

} // namespace vesk
