#include "Platform/Linux/Accessibility/FocusWalk.h"

namespace vesk {

namespace {

using namespace Qt::StringLiterals;
using atspi::Reference;

constexpr qsizetype MostElements = 3000;
constexpr qsizetype MostTogether = 200; // questions in flight at once; the program answers them one by one

struct Level {
    QList<Reference> focused;
    QList<Reference> children;
};

Task<Level> lookAt(AtspiSessionPointer session, QList<Reference> elements, Patience patience)
{
    QList<QDBusPendingCall> calls;
    for (const Reference &element : elements) {
        calls.append(session->bus().call(patience, element, atspi::AccessibleInterface, u"GetState"_s));
        calls.append(session->bus().call(patience, element, atspi::AccessibleInterface, u"GetChildren"_s));
    }
    const QList<QDBusMessage> replies = co_await answers(calls);
    Level level;
    for (qsizetype i = 0; i < elements.size(); ++i) {
        const auto states = atspi::states(replies[2 * i]);
        if (states && states->has(atspi::State::focused)) {
            level.focused.prepend(elements[i]);
        }
        for (const Reference &child : atspi::references(replies[2 * i + 1]).value_or(QList<Reference>())) {
            if (!child.isNull()) {
                level.children.append(child);
            }
        }
    }
    co_return level;
}

} // namespace

Task<std::optional<FieldFacts>> walkToFocused(AtspiSessionPointer session, Reference window,
                                              Patience patience)
{
    QList<Reference> waiting = {window};
    QList<Reference> focused; // the deepest first
    qsizetype seen = 0;
    while (!waiting.isEmpty() && seen < MostElements && patience.left().count() > 0) {
        const QList<Reference> batch = waiting.mid(0, MostTogether);
        waiting = waiting.mid(batch.size());
        seen += batch.size();
        const Level level = co_await lookAt(session, batch, patience);
        focused = level.focused + focused;
        waiting.append(level.children);
    }
    co_return co_await chooseFocused(session, focused, patience);
}

Task<std::optional<FieldFacts>> chooseFocused(AtspiSessionPointer session, QList<Reference> deepestFirst,
                                              Patience patience)
{
    std::vector<Task<std::optional<FieldFacts>>> tasks;
    tasks.reserve(static_cast<std::size_t>(deepestFirst.size()));
    for (const Reference &element : deepestFirst) {
        tasks.push_back(readFacts(session, element, patience));
    }
    std::optional<FieldFacts> best;
    for (Task<std::optional<FieldFacts>> &task : tasks) {
        auto facts = co_await task;
        if (facts && (!best || (!best->hasText && facts->hasText))) {
            best = std::move(facts);
        }
    }
    co_return best;
}

} // namespace vesk
