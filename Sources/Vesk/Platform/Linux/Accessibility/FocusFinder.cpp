#include "Platform/Linux/Accessibility/FocusFinder.h"

#include "Platform/Linux/Accessibility/FocusWalk.h"
#include "Platform/Linux/Accessibility/Processes.h"

#include <QCoroDBusPendingCall>

#include <functional>

namespace vesk::FocusFinder {

namespace {

using namespace Qt::StringLiterals;
using atspi::Reference;

constexpr int MostMatches = 4;
constexpr uint CanonicalOrder = 1;
constexpr int DeepestNesting = 100; // of elements below a window

const Reference Registry{u"org.a11y.atspi.Registry"_s, atspi::RootPath};

/// Worth more than what surrounds it.
bool isField(const FieldFacts &facts) { return facts.hasText || facts.isSecret; }

QDBusPendingCall childrenOf(const AtspiSession &session, Patience patience, const Reference &object)
{
    return session.bus().call(patience, object, atspi::AccessibleInterface, u"GetChildren"_s);
}

/// The process of every program on the bus. Only the bus is asked, never a program.
Task<QHash<QString, uint>> readProcesses(AtspiSessionPointer session, Patience patience)
{
    const QDBusMessage reply = co_await childrenOf(*session, patience, Registry);
    const auto programs = atspi::references(reply).value_or(QList<Reference>());
    QStringList unknown;
    QList<QDBusPendingCall> calls;
    for (const Reference &program : programs) {
        if (!session->program(program.service).processId) {
            unknown.append(program.service);
            calls.append(session->bus().processOf(patience, program.service));
        }
    }
    const QList<QDBusMessage> replies = co_await answers(calls);
    for (qsizetype i = 0; i < unknown.size(); ++i) {
        session->program(unknown[i]).processId = atspi::number(replies[i]);
    }
    QHash<QString, uint> processes;
    for (const Reference &program : programs) {
        if (const auto process = session->program(program.service).processId) {
            processes.insert(program.service, *process);
        }
    }
    co_return processes;
}

/// The first of the programs that shows windows: some toolkits register a second, empty one.
Task<std::optional<Found>> withWindows(AtspiSessionPointer session, QStringList services, Patience patience)
{
    QList<QDBusPendingCall> calls;
    for (const QString &service : services) {
        calls.append(childrenOf(*session, patience, {service, atspi::RootPath}));
    }
    const QList<QDBusMessage> replies = co_await answers(calls);
    for (qsizetype i = 0; i < services.size(); ++i) {
        const auto windows = atspi::references(replies[i]);
        if (windows && !windows->isEmpty()) {
            co_return Found{services[i], *windows};
        }
    }
    co_return std::nullopt;
}

/// Those windows whose answer fits; `calls` holds the question to each of them.
Task<QList<Reference>> fitting(QList<Reference> windows, QList<QDBusPendingCall> calls,
                               std::function<bool(const QDBusMessage &)> fits)
{
    const QList<QDBusMessage> replies = co_await answers(calls);
    QList<Reference> matching;
    for (qsizetype i = 0; i < windows.size(); ++i) {
        if (fits(replies[i])) {
            matching.append(windows[i]);
        }
    }
    co_return matching;
}

/// The windows with the title of the window in front, of those that a program calls active.
Task<QList<Reference>> titled(const AtspiSessionPointer &session, const QList<Reference> &windows,
                              const QString &title, Patience patience)
{
    QList<QDBusPendingCall> calls;
    for (const Reference &window : windows) {
        calls.append(session->bus().property(patience, window, atspi::AccessibleInterface, u"Name"_s));
    }
    return fitting(windows, calls,
                   [title](const QDBusMessage &reply) { return atspi::property(reply).toString() == title; });
}

Task<QList<Reference>> active(const AtspiSessionPointer &session, const QList<Reference> &windows,
                              Patience patience)
{
    QList<QDBusPendingCall> calls;
    for (const Reference &window : windows) {
        calls.append(session->bus().call(patience, window, atspi::AccessibleInterface, u"GetState"_s));
    }
    return fitting(windows, calls, [](const QDBusMessage &reply) {
        const auto states = atspi::states(reply);
        return states && states->has(atspi::State::active);
    });
}

/// A window's process need not be the one on the bus: programs have helpers, and a sandbox has numbers of its
/// own. Relatives of the process, and the program that last took the focus, are believed when they call a
/// window with the very same title active.
Task<std::optional<Found>> findRelative(AtspiSessionPointer session, WindowDescription window,
                                        QHash<QString, uint> processes, Patience patience)
{
    QStringList services;
    for (auto process = processes.cbegin(); process != processes.cend(); ++process) {
        const bool isRelated =
            window.processId > 0 && Processes::areRelated(process.value(), window.processId);
        if (isRelated || process.key() == session->lastFocused()) {
            services.append(process.key());
        }
    }
    for (const QString &service : services) {
        const auto found = co_await withWindows(session, QStringList(service), patience);
        if (!found) {
            continue;
        }
        const QList<Reference> candidates = co_await active(session, found->windows, patience);
        const QList<Reference> same = co_await titled(session, candidates, window.title, patience);
        if (!same.isEmpty() && !window.title.isEmpty()) {
            co_return Found{service, same};
        }
    }
    co_return std::nullopt;
}

/// The one of a program's windows that is in front.
Task<Reference> frontWindow(AtspiSessionPointer session, QList<Reference> windows, QString title,
                            Patience patience)
{
    if (windows.size() == 1) {
        co_return windows.constFirst();
    }
    QList<Reference> candidates = co_await active(session, windows, patience);
    if (candidates.size() == 1) {
        co_return candidates.constFirst();
    }
    if (candidates.isEmpty()) {
        candidates = windows;
    }
    const QList<Reference> same = co_await titled(session, candidates, title, patience);
    if (!same.isEmpty()) {
        co_return same.constFirst();
    }
    co_return Reference();
}

Task<Reference> parentOf(AtspiSessionPointer session, Reference element, Patience patience)
{
    const QDBusMessage reply =
        co_await session->bus().property(patience, element, atspi::AccessibleInterface, u"Parent"_s);
    co_return qdbus_cast<Reference>(atspi::property(reply));
}

Task<bool> isInside(AtspiSessionPointer session, Reference element, Reference window, Patience patience)
{
    for (int depth = 0; depth < DeepestNesting && !element.isNull(); ++depth) {
        if (element == window) {
            co_return true;
        }
        element = co_await parentOf(session, element, patience);
    }
    co_return false;
}

/// What the program itself finds; it searches without a walk of ours.
Task<QList<Reference>> collected(AtspiSessionPointer session, Reference window, Patience patience)
{
    if (session->program(window.service).lacksCollection) {
        co_return QList<Reference>();
    }
    const QDBusMessage reply =
        co_await session->bus().call(patience, window, atspi::CollectionInterface, u"GetMatches"_s,
                                     atspi::FocusedRule(), CanonicalOrder, MostMatches, true);
    const QString error = reply.errorName();
    if (error.endsWith(u"UnknownMethod") || error.endsWith(u"UnknownInterface")) {
        session->program(window.service).lacksCollection = true;
    }
    QList<Reference> matches = atspi::references(reply).value_or(QList<Reference>());
    std::reverse(matches.begin(), matches.end());
    co_return matches;
}

/// What the process last said about the focus, if the element itself still says so.
Task<std::optional<FieldFacts>> remembered(AtspiSessionPointer session, qint64 processId, Patience patience)
{
    std::optional<Reference> focused;
    for (const QString &service : session->servicesOf(processId)) {
        focused = focused ? focused : session->program(service).focused;
    }
    if (!focused) {
        co_return std::nullopt;
    }
    auto facts = co_await readFacts(session, *focused, patience);
    if (!facts || !facts->isFocused()) {
        co_return std::nullopt;
    }
    if (!isField(*facts)) {
        // Qt calls the inner part of a text edit focused as well, which has no text of its own.
        const Reference parent = co_await parentOf(session, *focused, patience);
        auto outer = co_await readFacts(session, parent, patience);
        if (outer && outer->isFocused() && isField(*outer)) {
            facts = std::move(outer);
        }
    }
    co_return facts;
}

/// Finds it without the process having told.
Task<std::optional<FieldFacts>> search(AtspiSessionPointer session, Reference window,
                                       std::optional<FieldFacts> known, Patience patience)
{
    const QList<Reference> matches = co_await collected(session, window, patience);
    auto facts = co_await chooseFocused(session, matches, patience);
    if (!facts && known) {
        const bool isHere = co_await isInside(session, known->object, window, patience);
        facts = isHere ? std::move(known) : std::nullopt;
    }
    if (!facts) {
        facts = co_await walkToFocused(session, window, patience);
    }
    if (facts) {
        session->program(window.service).focused = facts->object; // the next capture need not search
    }
    co_return facts;
}

} // namespace

Task<std::optional<Found>> findProgram(AtspiSessionPointer session, WindowDescription window,
                                       Patience patience)
{
    QStringList services = session->servicesOf(window.processId);
    if (!services.isEmpty()) {
        auto found = co_await withWindows(session, services, patience);
        if (found || patience.left() < patience.call) {
            co_return found; // what took so long hangs, and would hang again
        }
    }
    const QHash<QString, uint> processes = co_await readProcesses(session, patience);
    services = session->servicesOf(window.processId);
    if (!services.isEmpty()) {
        co_return co_await withWindows(session, services, patience);
    }
    co_return co_await findRelative(session, window, processes, patience);
}

Task<std::optional<FieldFacts>> findFocused(AtspiSessionPointer session, WindowDescription window,
                                            Patience patience)
{
    auto memory =
        remembered(session, window.processId, patience); // on its way while the program is looked up
    const auto program = co_await findProgram(session, window, patience);
    if (!program) {
        co_return std::nullopt;
    }
    auto known = co_await memory;
    if (known && isField(*known) && program->windows.size() == 1) {
        co_return known;
    }
    const Reference front = co_await frontWindow(session, program->windows, window.title, patience);
    if (front.isNull()) {
        co_return std::nullopt;
    }
    co_return co_await search(session, front, std::move(known), patience);
}

} // namespace vesk::FocusFinder
