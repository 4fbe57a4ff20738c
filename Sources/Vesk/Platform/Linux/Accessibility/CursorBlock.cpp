#include "Platform/Linux/Accessibility/CursorBlock.h"

namespace vesk {

namespace {

using namespace Qt::StringLiterals;
using atspi::Reference;

constexpr int DeepestNesting = 12; // lists in quotations in lists; a page may be anything

const QString HypertextInterface = u"org.a11y.atspi.Hypertext"_s;
const QString HyperlinkInterface = u"org.a11y.atspi.Hyperlink"_s;

/// Browsers are the ones that lay text out in elements.
bool hasBlocks(const FieldFacts &facts)
{
    const bool isPage = facts.toolkit == u"Chromium" || facts.toolkit == u"Gecko"
        || facts.toolkit.startsWith(u"WebKit", Qt::CaseInsensitive);
    return isPage && facts.hasText && !facts.isSecret && facts.states.has(atspi::State::editable);
}

Task<QVariant> answer(QDBusPendingCall call)
{
    const QList<QDBusMessage> replies = co_await answers(QList<QDBusPendingCall>(1, call));
    const QDBusMessage &reply = replies.constFirst();
    const bool isAnswer = reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty();
    co_return isAnswer ? reply.arguments().constFirst() : QVariant();
}

/// The element that the placeholder at the cursor stands for; null when ordinary text stands there.
Task<Reference> blockBelow(AtspiSessionPointer session, Reference element, Patience patience)
{
    const QVariant caret =
        co_await answer(session->bus().property(patience, element, atspi::TextInterface, u"CaretOffset"_s));
    const int place = caret.value<QDBusVariant>().variant().toInt();
    const QVariant index =
        co_await answer(session->bus().call(patience, element, HypertextInterface, u"GetLinkIndex"_s, place));
    if (!index.isValid() || index.toInt() < 0) {
        co_return Reference();
    }
    const QVariant link = co_await answer(
        session->bus().call(patience, element, HypertextInterface, u"GetLink"_s, index.toInt()));
    const QVariant object = co_await answer(
        session->bus().call(patience, qdbus_cast<Reference>(link), HyperlinkInterface, u"GetObject"_s, 0));
    co_return qdbus_cast<Reference>(object);
}

} // namespace

Task<Reference> blockAtCursor(AtspiSessionPointer session, FieldFacts facts, Patience patience)
{
    Reference block = facts.object;
    for (int depth = 0; depth < DeepestNesting && hasBlocks(facts); ++depth) {
        const Reference below = co_await blockBelow(session, block, patience);
        if (below.isNull()) {
            break;
        }
        const auto inner = co_await readFacts(session, below, patience);
        if (!inner || !hasBlocks(*inner)) {
            break; // an image, a button
        }
        block = below;
    }
    co_return block;
}

} // namespace vesk
