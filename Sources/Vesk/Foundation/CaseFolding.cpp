#include "Foundation/CaseFolding.h"

#include <QList>

#include <algorithm>
#include <array>

namespace vesk::CaseFolding {

namespace {

struct Expansion {
    char32_t character;
    const char16_t *folded;
};

/// Characters that fold to several and have no canonical decomposition, from Unicode's CaseFolding.txt
/// (status F). Qt folds every character to one.
constexpr std::array Expansions = {
    Expansion{0x00DF, u"ss"},           // ß
    Expansion{0x0149, u"\u02BCn"},      // ŉ
    Expansion{0x0587, u"\u0565\u0582"}, // և
    Expansion{0x1E9A, u"a\u02BE"},      // ẚ
    Expansion{0x1E9E, u"ss"},           // ẞ
    Expansion{0xFB00, u"ff"},           Expansion{0xFB01, u"fi"},
    Expansion{0xFB02, u"fl"},           Expansion{0xFB03, u"ffi"},
    Expansion{0xFB04, u"ffl"},          Expansion{0xFB05, u"st"},
    Expansion{0xFB06, u"st"},           Expansion{0xFB13, u"\u0574\u0576"},
    Expansion{0xFB14, u"\u0574\u0565"}, Expansion{0xFB15, u"\u0574\u056B"},
    Expansion{0xFB16, u"\u057E\u0576"}, Expansion{0xFB17, u"\u0574\u056D"},
};

void appendFoldedCharacter(char32_t character, QString &into)
{
    const auto row = std::lower_bound(
        Expansions.begin(), Expansions.end(), character,
        [](const Expansion &expansion, char32_t wanted) { return expansion.character < wanted; });
    if (row != Expansions.end() && row->character == character) {
        into += QStringView(row->folded);
    } else {
        into += QChar::fromUcs4(QChar::toCaseFolded(character));
    }
}

/// The definition: decompose, fold, decompose again.
QString foldedByDefinition(const QString &text)
{
    const QString decomposed = text.normalized(QString::NormalizationForm_D);
    QString folded;
    for (const char32_t character : decomposed.toUcs4()) {
        appendFoldedCharacter(character, folded);
    }
    return folded.normalized(QString::NormalizationForm_D);
}

/// The characters that most text is made of, folded once.
class Table {
public:
    static constexpr qsizetype MostUnits = 3; // of those in the table

    struct Row {
        std::array<char16_t, MostUnits> units = {};
        qsizetype size = 0;
    };

    Table()
    {
        for (char16_t unit = 0; unit < Size; ++unit) {
            const QString folded = foldedByDefinition(QString(QChar(unit)));
            Row &row = m_rows[unit];
            row.size = folded.size();
            std::transform(folded.begin(), folded.end(), row.units.begin(),
                           [](QChar c) { return c.unicode(); });
        }
    }

    static constexpr char16_t Size = 0x0530; // Latin, Greek, Cyrillic
    const Row &operator[](char16_t unit) const { return m_rows[unit]; }

private:
    std::array<Row, Size> m_rows;
};

} // namespace

void append(QStringView characters, QString &into) { into += foldedByDefinition(characters.toString()); }

void appendUnits(QStringView units, QString &into, std::vector<qsizetype> &starts)
{
    static const Table table;
    qsizetype end = into.size();
    into.resize(end + Table::MostUnits * units.size());
    for (const QChar unit : units) {
        starts.push_back(end);
        if (unit.unicode() < Table::Size) {
            const Table::Row &row = table[unit.unicode()];
            std::copy(row.units.begin(), row.units.end(), into.begin() + end); // three are as quick as one
            end += row.size;
        } else {
            const QString one = foldedByDefinition(QString(unit));
            into.resize(into.size() + one.size());
            std::copy(one.begin(), one.end(), into.begin() + end);
            end += one.size();
        }
    }
    into.resize(end);
}

QString folded(QStringView text) { return foldedByDefinition(text.toString()); }

} // namespace vesk::CaseFolding
