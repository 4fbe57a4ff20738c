#include "Platform/Linux/Accessibility/TextReading.h"

namespace vesk {

namespace {

using namespace Qt::StringLiterals;

/// Firefox puts a filler behind every character of two units, so that its text is as long in code points as
/// its strings are in units.
QString withoutFillers(const QString &text)
{
    constexpr QChar Filler = u'\ufeff';
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isFiller = text.at(i) == Filler && (i == 0 || text.at(i - 1).isLowSurrogate());
        if (!isFiller) {
            plain.append(text.at(i));
        }
    }
    return plain;
}

/// The two places that were asked about are the halves of one character.
bool isPair(const QDBusMessage &reply)
{
    const QString text = atspi::text(reply).value_or(QString());
    return text.size() == 2 && text.front().isHighSurrogate();
}

} // namespace

TextUnit unitOf(const FieldFacts &facts)
{
    return facts.toolkit == u"Qt" || facts.toolkit == u"Gecko" ? TextUnit::utf16 : TextUnit::codePoint;
}

Task<std::optional<QString>> readText(AtspiSessionPointer session, FieldFacts facts, Patience patience,
                                      int start, int end)
{
    const auto ask = [&](int from, int to) {
        return session->bus().call(patience, facts.textObject, atspi::TextInterface, u"GetText"_s, from, to);
    };
    QList<QDBusPendingCall> calls;
    calls.append(ask(start, end));
    if (facts.toolkit == u"Qt") {
        // Half a surrogate pair at an end arrives as a question mark. The places around it tell them apart.
        calls.append(ask(std::max(start - 1, 0), start + 1));
        calls.append(ask(end - 1, end + 1));
    }
    const QList<QDBusMessage> replies = co_await answers(calls);
    std::optional<QString> piece = atspi::text(replies[0]);
    if (piece && replies.size() > 1) {
        if (!piece->isEmpty() && isPair(replies[2])) {
            piece->chop(1);
        }
        if (!piece->isEmpty() && isPair(replies[1])) {
            piece->remove(0, 1);
        }
    }
    if (piece && facts.toolkit == u"Gecko") {
        piece = withoutFillers(*piece);
    }
    co_return piece;
}

} // namespace vesk
