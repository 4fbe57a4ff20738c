#include "Foundation/JsonEscapes.h"

#include <QString>

#include <algorithm>

namespace vesk {

namespace {

constexpr qsizetype EscapeSize = 2;        // \n
constexpr qsizetype UnicodeEscapeSize = 6; // \u and four digits

/// The four digits of a \u escape; -1 when they are none.
int hexadecimal(const char *digits)
{
    int value = 0;
    for (int i = 0; i < 4; ++i) {
        const char c = digits[i];
        const int lower = c | 0x20;
        const int digit = c >= '0' && c <= '9' ? c - '0'
            : lower >= 'a' && lower <= 'f'     ? lower - 'a' + 10
                                               : -1;
        if (digit < 0) {
            return -1;
        }
        value = value * 16 + digit;
    }
    return value;
}

} // namespace

std::optional<qsizetype> Json::escapeLength(QByteArrayView text)
{
    if (text.size() < EscapeSize) {
        return 0;
    }
    if (text[1] != 'u') {
        constexpr QByteArrayView Letters = "\"\\/bfnrt";
        return Letters.contains(text[1]) ? std::optional(EscapeSize) : std::nullopt;
    }
    if (text.size() < UnicodeEscapeSize) {
        return 0;
    }
    const int unit = hexadecimal(text.data() + EscapeSize);
    if (unit < 0 || QChar::isLowSurrogate(static_cast<char32_t>(unit))) {
        return std::nullopt;
    }
    if (!QChar::isHighSurrogate(static_cast<char32_t>(unit))) {
        return UnicodeEscapeSize;
    }
    if (text.size() < 2 * UnicodeEscapeSize) {
        return 0;
    }
    const char *second = text.data() + UnicodeEscapeSize;
    const int low = second[0] == '\\' && second[1] == 'u' ? hexadecimal(second + EscapeSize) : -1;
    return low >= 0 && QChar::isLowSurrogate(static_cast<char32_t>(low))
        ? std::optional(2 * UnicodeEscapeSize)
        : std::nullopt;
}

void Json::unescape(QByteArrayView raw, QByteArray &into)
{
    const char *at = raw.begin();
    while (at != raw.end()) {
        const char *escape = std::find(at, raw.end(), '\\');
        into.append(at, escape - at);
        if (escape == raw.end()) {
            return;
        }
        if (escape[1] == 'u') {
            QString unit(QChar(static_cast<char16_t>(hexadecimal(escape + 2))));
            at = escape + UnicodeEscapeSize;
            if (unit.front().isHighSurrogate()) {
                unit += QChar(static_cast<char16_t>(hexadecimal(at + 2)));
                at += UnicodeEscapeSize;
            }
            into.append(unit.toUtf8());
            continue;
        }
        constexpr QByteArrayView Letters = "bfnrt";
        const qsizetype letter = Letters.indexOf(escape[1]);
        into.append(letter < 0 ? escape[1] : "\b\f\n\r\t"[letter]);
        at = escape + EscapeSize;
    }
}

} // namespace vesk
