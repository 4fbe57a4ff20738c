#include "Foundation/Text.h"

#include <QFileInfo>
#include <QStringDecoder>

#include <algorithm>
#include <system_error>

namespace vesk::Text {

QString collapsed(QStringView text) { return text.toString().simplified(); }

QList<QStringView> nonEmptyLines(QStringView text)
{
    const auto isLineBreak = [](QChar c) {
        const char16_t unit = c.unicode();
        return (unit >= u'\n' && unit <= u'\r') || unit == u'\u0085' || unit == u'\u2028'
            || unit == u'\u2029';
    };
    QList<QStringView> lines;
    for (auto at = text.begin(); at != text.end();) {
        const auto end = std::find_if(at, text.end(), isLineBreak);
        if (end != at) {
            lines.append(QStringView(at, end));
        }
        at = end == text.end() ? end : end + 1;
    }
    return lines;
}

void appendUtf8(QByteArrayView utf8, QString &into)
{
    const qsizetype before = into.size();
    into.resize(before + utf8.size()); // at least as many units as there will be
    using Flag = QStringDecoder::Flag;
    QStringDecoder decoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    const QChar *end = decoder.appendToBuffer(into.data() + before, utf8);
    into.resize(end - into.constData());
}

qsizetype wholeCharacters(QByteArrayView utf8)
{
    constexpr qsizetype LongestCharacter = 4;
    for (qsizetype back = 1; back <= std::min(LongestCharacter - 1, utf8.size()); ++back) {
        const auto byte = static_cast<unsigned char>(utf8[utf8.size() - back]);
        if (byte < 0x80) {
            break;
        }
        if (byte >= 0xC0) {
            const qsizetype length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
            return length > back ? utf8.size() - back : utf8.size();
        }
    }
    return utf8.size();
}

QString systemReason(int errorNumber)
{
    return QString::fromStdString(std::generic_category().message(errorNumber));
}

QString fileName(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    return name.isEmpty() ? path : name;
}

} // namespace vesk::Text
