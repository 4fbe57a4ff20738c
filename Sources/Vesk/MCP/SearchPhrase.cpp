#include "MCP/SearchPhrase.h"

#include "Foundation/CaseFolding.h"

#include <QList>

#include <algorithm>

namespace vesk {

namespace {

/// A character whose folded form is not itself.
struct Spelling {
    char32_t character;
    QList<uint> folded;
};

QString textOf(char32_t character) { return QString::fromUcs4(&character, 1); }

QByteArray utf8(char32_t character) { return textOf(character).toUtf8(); }

/// All there are, but for Korean syllables: those are many, and a phrase with one is searched without the
/// quick way. Found once per process, in about a millisecond.
const std::vector<Spelling> &spellings()
{
    static const std::vector<Spelling> all = [] {
        struct Range {
            char32_t first;
            char32_t last;
        };
        // Without the large blocks in which nothing folds: ideographs, syllables, surrogates, private use.
        constexpr std::array Ranges = {Range{0, 0x33FF}, Range{0xA000, 0xABFF}, Range{0xF900, 0x16FFF},
                                       Range{0x1D000, 0x1FFFF}, Range{0x2F800, 0x2FA1F}};
        std::vector<Spelling> found;
        for (const Range &range : Ranges) {
            for (char32_t c = range.first; c <= range.last; ++c) {
                const QString text = textOf(c);
                if (const QString folded = CaseFolding::folded(text); folded != text) {
                    found.push_back({c, folded.toUcs4()});
                }
            }
        }
        return found;
    }();
    return all;
}

bool isSubsequence(const QList<uint> &some, const QList<uint> &all)
{
    auto at = all.begin();
    return std::all_of(some.begin(), some.end(), [&](uint wanted) {
        at = std::find(at, all.end(), wanted);
        return at != all.end() && (++at, true);
    });
}

/// A letter of the folded phrase, and how it may stand in a text.
struct Letter {
    bool isUsable = false;
    std::vector<QByteArray> usual;   // alone, in as many bytes as the letter itself
    std::vector<QByteArray> unusual; // in another number of bytes, or together with its neighbours
    int rarity = 0;
};

/// A letter that is certain to be found where it is looked for: not one that JSON escapes by a letter of its
/// own, no mark that may change places with others, no part of a Korean syllable.
bool isCertain(char32_t letter)
{
    const bool isJamo = letter >= 0x1100 && letter <= 0x11FF;
    return letter >= U' ' && letter != U'"' && letter != U'\\' && letter != U'/' && !isJamo
        && QChar::combiningClass(letter) == 0;
}

Letter letterOf(char32_t letter, const QList<uint> &phrase)
{
    constexpr int MostUnusual = 6;
    Letter found;
    const QByteArray itself = utf8(letter);
    found.usual.push_back(itself);
    for (const Spelling &spelling : spellings()) {
        const bool isAlone = spelling.folded.size() == 1;
        if (!spelling.folded.contains(letter) || !(isAlone || isSubsequence(spelling.folded, phrase))) {
            continue;
        }
        const QByteArray bytes = utf8(spelling.character);
        const bool isUsual =
            isAlone && bytes.size() == itself.size() && QChar::combiningClass(spelling.character) == 0;
        (isUsual ? found.usual : found.unusual).push_back(bytes);
    }
    found.isUsable = isCertain(letter) && found.unusual.size() <= MostUnusual;
    constexpr std::u32string_view Frequent = U" etaoinshr";
    constexpr std::u32string_view FrequentCyrillic = U"оаеинтрсвл";
    const bool isFrequent = Frequent.find(letter) != std::u32string_view::npos
        || FrequentCyrillic.find(letter) != std::u32string_view::npos;
    // What is unusual has to be looked for as well, each time over the whole text.
    found.rarity = (isFrequent ? 2 : 4) - 3 * static_cast<int>(found.unusual.size());
    return found;
}

using Run = std::pair<std::size_t, std::size_t>; // first letter, one behind the last

/// The run of letters that is found least often, and nothing when there is none to look for.
std::optional<Run> rarestRun(const std::vector<Letter> &letters)
{
    constexpr std::size_t LongestRun = 16; // longer ones are found no less often
    std::optional<Run> best;
    int bestRarity = 0;
    for (std::size_t first = 0; first < letters.size(); ++first) {
        int rarity = 0;
        for (std::size_t end = first; end < std::min(letters.size(), first + LongestRun); ++end) {
            if (!letters[end].isUsable) {
                break;
            }
            rarity += letters[end].rarity;
            if (!best || rarity > bestRarity) {
                best = {first, end + 1};
                bestRarity = rarity;
            }
        }
    }
    return best;
}

void addTo(QByteArray &set, char byte)
{
    if (!set.contains(byte)) {
        set.append(byte);
    }
}

std::vector<BytePattern> patternsOf(const std::vector<Letter> &letters, Run run)
{
    std::vector<QByteArray> places;
    std::vector<BytePattern> patterns;
    std::vector<QByteArray> unusual;
    for (std::size_t i = run.first; i < run.second; ++i) {
        const std::size_t begin = places.size();
        places.resize(begin + static_cast<std::size_t>(letters[i].usual.front().size()));
        for (const QByteArray &spelling : letters[i].usual) {
            for (qsizetype byte = 0; byte < spelling.size(); ++byte) {
                addTo(places[begin + static_cast<std::size_t>(byte)], spelling[byte]);
            }
        }
        unusual.insert(unusual.end(), letters[i].unusual.begin(), letters[i].unusual.end());
    }
    patterns.emplace_back(std::move(places));
    std::sort(unusual.begin(), unusual.end());
    for (std::size_t i = 0; i < unusual.size();) {
        // Those that differ in their last byte only are looked for together.
        const QByteArray stem = unusual[i].chopped(1);
        QByteArray ends;
        for (; i < unusual.size() && unusual[i].chopped(1) == stem; ++i) {
            addTo(ends, unusual[i].back());
        }
        std::vector<QByteArray> spelled;
        for (const char byte : stem) {
            spelled.emplace_back(1, byte);
        }
        spelled.push_back(ends);
        patterns.emplace_back(std::move(spelled));
    }
    return patterns;
}

} // namespace

SearchPhrase::SearchPhrase(const QString &phrase)
    : m_folded(CaseFolding::folded(phrase))
{
    const QList<uint> characters = m_folded.toUcs4();
    std::vector<Letter> letters;
    constexpr qsizetype Looked = 64; // a longer phrase has its rare letters among these
    for (const uint character : characters.first(std::min(characters.size(), Looked))) {
        letters.push_back(letterOf(character, characters));
    }
    if (const std::optional<Run> run = rarestRun(letters)) {
        m_patterns = patternsOf(letters, *run);
    }
}

bool SearchPhrase::mayBeInText(QByteArrayView utf8) const
{
    return m_patterns.empty()
        || std::any_of(m_patterns.begin(), m_patterns.end(),
                       [utf8](const BytePattern &pattern) { return pattern.isIn(utf8); });
}

bool SearchPhrase::mayBeInJson(QByteArrayView json) const
{
    // Any character may be spelled "\u" and its number; the letters of a pattern have no other escape.
    static const BytePattern numbered({QByteArrayLiteral("\\"), QByteArrayLiteral("u")});
    return mayBeInText(json) || numbered.isIn(json);
}

} // namespace vesk
