#include "Platform/Linux/Speech/SentenceJoin.h"

#include "Platform/Linux/Speech/Vocabulary/Letters.h"
#include "Platform/Linux/Speech/Vocabulary/WordKind.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vesk {

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace {

// Up to which pause two pieces are one sentence, by what their words say (SentenceJoin.h).
constexpr AudioDuration CertainlyOne = SentenceJoin::LongestPause;
constexpr AudioDuration ProbablyOne{0.7};
constexpr AudioDuration PossiblyOne{0.45};
constexpr AudioDuration NothingSaid{0.15}; ///< a cut in the flow of speech, not a breath

/// Words that seldom end a sentence: what follows belongs to it.
constexpr std::array Leading{"a"sv,    "an"sv,   "and"sv,  "as"sv,    "because"sv, "but"sv,  "every"sv,
                             "from"sv, "if"sv,   "into"sv, "my"sv,    "nor"sv,     "of"sv,   "or"sv,
                             "our"sv,  "than"sv, "the"sv,  "their"sv, "very"sv,    "with"sv, "your"sv};
static_assert(std::ranges::is_sorted(Leading));

/// Words that ask, or else belong to the clause before them ("ask not what your country can do").
constexpr std::array Asking{"how"sv, "what"sv, "where"sv, "who"sv, "why"sv};
static_assert(std::ranges::is_sorted(Asking));

/// Words that begin no sentence.
constexpr std::array Dependent{"than"sv, "which"sv, "whom"sv, "whose"sv};
static_assert(std::ranges::is_sorted(Dependent));

/// Words that some people begin a sentence with, after a breath.
constexpr std::array Joining{"and"sv, "because"sv, "but"sv, "nor"sv, "or"sv};
static_assert(std::ranges::is_sorted(Joining));

/// Words that begin the rest of a sentence more often than another one, unless they ask.
constexpr std::array Continuing{"are"sv,  "as"sv,   "can"sv,  "could"sv, "from"sv,   "had"sv,  "has"sv,
                                "have"sv, "into"sv, "is"sv,   "of"sv,    "that"sv,   "to"sv,   "until"sv,
                                "upon"sv, "was"sv,  "were"sv, "will"sv,  "within"sv, "would"sv};

/// Names, by the word lists, that are far more often something else.
constexpr std::array SeldomNames{"best"sv, "day"sv, "good"sv, "left"sv, "little"sv, "long"sv, "lots"sv,
                                 "love"sv, "may"sv, "more"sv, "most"sv, "number"sv, "see"sv,  "still"sv};
static_assert(std::ranges::is_sorted(SeldomNames));

bool isApostrophe(QChar character) { return character == u'\'' || character == u'\u2019'; }

QStringView firstWord(QStringView text)
{
    const auto end = std::ranges::find_if_not(
        text, [](QChar character) { return character.isLetterOrNumber() || isApostrophe(character); });
    return text.first(end - text.begin());
}

QStringView lastWord(QStringView text)
{
    qsizetype begin = text.size();
    while (begin > 0 && (text[begin - 1].isLetterOrNumber() || isApostrophe(text[begin - 1]))) {
        --begin;
    }
    return text.sliced(begin);
}

/// The word without what an apostrophe adds to it.
QStringView stem(QStringView word)
{
    return word.first(std::ranges::find_if(word, isApostrophe) - word.begin());
}

/// A point that belongs to its word, whatever follows.
bool isAbbreviation(QStringView word)
{
    static const QStringList known = {u"mr"_s, u"mrs"_s, u"ms"_s, u"dr"_s, u"prof"_s,
                                      u"st"_s, u"etc"_s, u"vs"_s, u"jr"_s, u"sr"_s};
    return (word.size() == 1 && word.front().isUpper() && word != u"I")
        || known.contains(word, Qt::CaseInsensitive);
}

bool isQuestion(QStringView text)
{
    const auto end = std::ranges::find_if(
        text, [](QChar character) { return character == u'.' || character == u'!' || character == u'?'; });
    return end != text.end() && *end == u'?';
}

AudioDuration joinedUpTo(QStringView before, QStringView after)
{
    const std::string first = Letters::folded(firstWord(after));
    const auto begins = [&first](const auto &words) {
        return std::ranges::find(words, first) != words.end();
    };
    const bool asks = isQuestion(after);
    if (std::ranges::binary_search(Leading, Letters::folded(lastWord(before))) || begins(Dependent)
        || (begins(Asking) && !asks)) {
        return CertainlyOne;
    }
    if (begins(Joining)) {
        return ProbablyOne;
    }
    constexpr std::size_t ShortestForm = 6; // "making", not "king"
    const bool isForm = first.size() >= ShortestForm && first.ends_with("ing");
    return after.front().isLower() || ((begins(Continuing) || isForm) && !asks) ? PossiblyOne : NothingSaid;
}

} // namespace

SentenceJoin::SentenceJoin(const QStringList &vocabulary)
{
    for (const QString &entry : vocabulary) {
        const QStringView word = firstWord(entry);
        if (!word.isEmpty() && word.front().isUpper()) {
            m_capitals.insert(Letters::key(stem(word)));
        }
    }
}

void SentenceJoin::repair(QString &before, QString &after, AudioDuration pause) const
{
    if (pause > LongestPause || before.isEmpty() || after.isEmpty()) {
        return;
    }
    const bool hasStop = before.endsWith(u'.');
    const QStringView said = hasStop ? QStringView(before).chopped(1) : QStringView(before);
    if (said.isEmpty() || (hasStop && isAbbreviation(lastWord(said)))
        || (!said.back().isLetterOrNumber() && (hasStop || said.back() != u','))) {
        return; // a question, an exclamation, the end of what was quoted
    }
    const AudioDuration joined = joinedUpTo(said, after);
    if (pause > (hasStop ? joined : std::max(joined, PossiblyOne))) {
        if (said.back().isLetter() && !hasStop && after.front().isUpper()) {
            before += u'.';
        }
        return;
    }
    if (hasStop) {
        before.chop(1);
        if (firstWord(after).compare(u"but", Qt::CaseInsensitive) == 0) {
            before += u',';
        }
    }
    if (!keepsCapital(firstWord(after))) {
        after.front() = after.front().toLower();
    }
}

bool SentenceJoin::keepsCapital(QStringView word) const
{
    const QStringView plain = stem(word);
    const auto capitals = std::ranges::count_if(plain, [](QChar letter) { return letter.isUpper(); });
    if (capitals == 0 || plain == u"I" || capitals > 1) {
        return true;
    }
    if (m_capitals.contains(Letters::key(plain))) {
        return true;
    }
    const std::string folded = Letters::folded(plain);
    if (isSmallWord(folded) || std::ranges::binary_search(SeldomNames, folded)) {
        return false;
    }
    return wordKind(folded) != WordKind::ordinary || isAlsoName(folded);
}

} // namespace vesk
