#include "Platform/Linux/Speech/Vocabulary/Letters.h"

#include <QHash>
#include <QString>

#include <algorithm>
#include <numeric>
#include <utility>

using namespace Qt::StringLiterals;

namespace vesk::Letters {

namespace {

using Table = QHash<char16_t, const char *>;

/// Letters that do not come apart into a base letter and a mark.
const Table &plainLetters()
{
    static const Table table{{u'ß', "ss"}, {u'æ', "ae"}, {u'œ', "oe"}, {u'ø', "o"}, {u'đ', "d"},
                             {u'ð', "d"},  {u'þ', "th"}, {u'ł', "l"},  {u'ı', "i"}, {u'ħ', "h"}};
    return table;
}

const Table &writtenOutLetters()
{
    static const Table table{
        {u'ä', "ae"}, {u'ö', "oe"}, {u'ü', "ue"}, {u'å', "aa"},   {u'ø', "oe"}, {u'а', "a"},  {u'б', "b"},
        {u'в', "v"},  {u'г', "g"},  {u'д', "d"},  {u'е', "e"},    {u'ё', "yo"}, {u'ж', "zh"}, {u'з', "z"},
        {u'и', "i"},  {u'й', "y"},  {u'к', "k"},  {u'л', "l"},    {u'м', "m"},  {u'н', "n"},  {u'о', "o"},
        {u'п', "p"},  {u'р', "r"},  {u'с', "s"},  {u'т', "t"},    {u'у', "u"},  {u'ф', "f"},  {u'х', "kh"},
        {u'ц', "ts"}, {u'ч', "ch"}, {u'ш', "sh"}, {u'щ', "shch"}, {u'ъ', ""},   {u'ы', "y"},  {u'ь', ""},
        {u'э', "e"},  {u'ю', "yu"}, {u'я', "ya"}, {u'і', "i"},    {u'ї', "yi"}, {u'є', "ye"}, {u'ґ', "g"},
        {u'ў', "u"},  {u'ђ', "dj"}, {u'ј', "y"},  {u'љ', "ly"},   {u'њ', "ny"}, {u'ћ', "ch"}, {u'џ', "dzh"}};
    return table;
}

const Table &respelledLetters()
{
    static const Table table{{u'č', "ch"}, {u'ć', "ch"}, {u'š', "sh"}, {u'ś', "sh"},  {u'ş', "sh"},
                             {u'ž', "zh"}, {u'ź', "zh"}, {u'ż', "zh"}, {u'ř', "rzh"}, {u'ç', "s"},
                             {u'ñ', "ny"}, {u'ń', "ny"}, {u'ň', "ny"}, {u'ł', "wh"},  {u'ğ', ""},
                             {u'ä', "e"},  {u'ö', "o"},  {u'ü', "u"},  {u'å', "o"},   {u'ø', "o"}};
    return table;
}

/// Appends what a letter of Latin is without its marks; false when it is none.
bool appendBare(std::string &result, QChar letter)
{
    for (const QChar piece : QString(letter).normalized(QString::NormalizationForm_KD)) {
        if (piece.unicode() < 128 && piece.isLetterOrNumber()) {
            result += char(piece.unicode());
        } else if (piece.isLetterOrNumber() || piece.isSurrogate()) {
            return false;
        }
    }
    return true;
}

bool isAscii(QStringView text)
{
    return std::ranges::all_of(text, [](QChar c) { return c.unicode() < 128; });
}

/// Tables are asked in order, before marks are taken off.
std::string reduced(QStringView text, std::initializer_list<const Table *> tables)
{
    std::string result;
    const QString small = text.toString().toLower();
    for (const QChar letter : isAscii(small) ? small : small.normalized(QString::NormalizationForm_C)) {
        if (letter.unicode() < 128) {
            if (letter.isLetterOrNumber()) {
                result += char(letter.unicode());
            }
            continue;
        }
        const auto table =
            std::ranges::find_if(tables, [&](const Table *t) { return t->contains(letter.unicode()); });
        if (table != tables.end()) {
            result += (*table)->value(letter.unicode());
        } else if (!appendBare(result, letter)) {
            return {};
        }
    }
    return result;
}

enum class Shape { none, digit, capital, small };

Shape shape(QChar letter)
{
    if (letter.isDigit()) {
        return Shape::digit;
    }
    if (!letter.isLetter()) {
        return Shape::none;
    }
    return letter.isUpper() ? Shape::capital : Shape::small;
}

} // namespace

std::string folded(QStringView text) { return reduced(text, {&plainLetters()}); }

std::string writtenOut(QStringView text) { return reduced(text, {&writtenOutLetters(), &plainLetters()}); }

std::string respelled(QStringView text)
{
    return reduced(text, {&respelledLetters(), &writtenOutLetters(), &plainLetters()});
}

std::string key(QStringView text)
{
    std::string letters = folded(text);
    if (!letters.empty()) {
        return letters;
    }
    QString other;
    for (const QChar letter : text.toString().normalized(QString::NormalizationForm_C).toCaseFolded()) {
        if (letter.isLetterOrNumber() || letter.isMark()) {
            other += letter;
        }
    }
    return other.toStdString();
}

bool isCyrillic(QStringView text)
{
    return std::any_of(text.begin(), text.end(),
                       [](QChar c) { return c.script() == QChar::Script_Cyrillic; });
}

std::vector<QString> parts(QStringView text)
{
    std::vector<QString> result;
    QString part;
    const auto close = [&] {
        if (!part.isEmpty()) {
            result.push_back(std::exchange(part, QString()));
        }
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar letter = text.at(i);
        if (letter.isMark() || letter == u'\'' || letter == u'’') {
            continue;
        }
        const Shape now = shape(letter);
        const Shape before = i > 0 ? shape(text.at(i - 1)) : Shape::none;
        const Shape after = i + 1 < text.size() ? shape(text.at(i + 1)) : Shape::none;
        // In "SQLite" the last capital begins the next part.
        const bool begins = now == Shape::none || (now == Shape::digit) != (before == Shape::digit)
            || (now == Shape::capital && before == Shape::small)
            || (now == Shape::capital && before == Shape::capital && after == Shape::small);
        if (begins) {
            close();
        }
        if (now != Shape::none) {
            part += letter;
        }
    }
    close();
    return result;
}

std::size_t editDistance(std::string_view one, std::string_view other)
{
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t(0));
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t replaced = diagonal + (one[i] == other[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

} // namespace vesk::Letters
