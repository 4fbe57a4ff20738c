#include "Foundation/Graphemes.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace vesk::Graphemes {

namespace {

/// Neither joins its neighbours nor is joined by them, whoever they are among those for which this is true.
/// The carriage return is left out: with a line feed it is one character.
bool isAlone(QChar c)
{
    const char16_t unit = c.unicode();
    return (unit < 0x0300 && unit != u'\r')    // Latin, up to the combining marks
        || (unit >= 0x0370 && unit <= 0x0482)  // Greek, Cyrillic, up to Cyrillic's combining marks
        || (unit >= 0x048A && unit <= 0x052F)  // more Cyrillic
        || (unit >= 0x2010 && unit <= 0x2027)  // dashes, quotation marks, ellipsis
        || (unit >= 0x4E00 && unit <= 0x9FFF); // ideographs
}

} // namespace

bool areUnits(QStringView text) { return std::all_of(text.begin(), text.end(), isAlone); }

qsizetype count(QStringView text)
{
    if (areUnits(text)) {
        return text.size();
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() >= 0) {
        ++count;
    }
    return count;
}

void findStarts(QStringView text, std::vector<qsizetype> &into)
{
    into.clear();
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype start = 0; start >= 0 && start < text.size(); start = finder.toNextBoundary()) {
        into.push_back(start);
    }
    into.push_back(text.size());
}

} // namespace vesk::Graphemes
