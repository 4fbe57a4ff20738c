#include "Platform/Linux/Accessibility/FieldFacts.h"

namespace vesk {

namespace {

using namespace Qt::StringLiterals;
using atspi::Reference;

constexpr uint LineGranularity = 3;

/// GTK 4 by its name; a program that does not say what it is made with is treated with the same care.
bool mayHideSilently(const QString &toolkit) { return toolkit == u"GTK" || toolkit.isEmpty(); }

Task<QString> readToolkit(AtspiSessionPointer session, QString service, Patience patience)
{
    if (const auto known = session->program(service).toolkit) {
        co_return *known;
    }
    QList<QDBusPendingCall> calls;
    calls.append(session->bus().property(patience, {service, atspi::RootPath}, atspi::ApplicationInterface,
                                         u"ToolkitName"_s));
    const QList<QDBusMessage> replies = co_await answers(calls);
    const QVariant toolkit = atspi::property(replies.constFirst());
    if (toolkit.isValid()) {
        session->program(service).toolkit = toolkit.toString();
    }
    co_return toolkit.toString();
}

/// Only GetStringAtOffset answers with what is displayed; every other question about the text leaks it.
Task<FieldFacts> readDisplayed(AtspiSessionPointer session, FieldFacts facts, Patience patience)
{
    QList<QDBusPendingCall> calls;
    calls.append(session->bus().call(patience, facts.object, atspi::TextInterface, u"GetStringAtOffset"_s, 0,
                                     LineGranularity));
    calls.append(session->bus().property(patience, facts.object, atspi::TextInterface, u"CharacterCount"_s));
    const QList<QDBusMessage> replies = co_await answers(calls);
    const auto displayed = atspi::text(replies[0]);
    const QVariant count = atspi::property(replies[1]);
    if (!displayed || !count.isValid()) {
        facts.hasText = false; // not known to be harmless
    } else if (looksHidden(*displayed, count.toLongLong())) {
        facts.isSecret = true;
        session->program(facts.object.service).secrets.insert(facts.object.path);
    } else {
        facts.displayed = displayed;
    }
    co_return facts;
}

} // namespace

bool looksHidden(const QString &displayed, qint64 count)
{
    const QList<uint> signs = displayed.toUcs4();
    if (signs.isEmpty()) {
        return count > 0;
    }
    const uint sign = signs.first();
    const bool isRun = std::all_of(signs.begin(), signs.end() - (signs.size() > 1 ? 1 : 0),
                                   [sign](uint other) { return other == sign; });
    return isRun && !QChar::isLetterOrNumber(sign) && !QChar::isSpace(sign);
}

Task<std::optional<FieldFacts>> readFacts(AtspiSessionPointer session, Reference object, Patience patience)
{
    Task<QString> toolkitTask = readToolkit(session, object.service, patience);
    QList<QDBusPendingCall> calls;
    calls.append(session->bus().call(patience, object, atspi::AccessibleInterface, u"GetRole"_s));
    calls.append(session->bus().call(patience, object, atspi::AccessibleInterface, u"GetState"_s));
    calls.append(session->bus().call(patience, object, atspi::AccessibleInterface, u"GetInterfaces"_s));
    const QList<QDBusMessage> replies = co_await answers(calls);
    const QString toolkit = co_await toolkitTask;
    const auto role = atspi::number(replies[0]);
    const auto states = atspi::states(replies[1]);
    const auto interfaces = atspi::names(replies[2]);
    if (!role || *role == atspi::Role::Invalid || !states || !interfaces
        || states->has(atspi::State::defunct)) {
        co_return std::nullopt;
    }
    FieldFacts facts{object,  *role,       *states,
                     toolkit, object,      interfaces->contains(atspi::TextInterface),
                     false,   std::nullopt};
    facts.isSecret =
        *role == atspi::Role::PasswordText || session->program(object.service).secrets.contains(object.path);
    if (!facts.isSecret && facts.hasText && !states->has(atspi::State::multiLine)
        && mayHideSilently(toolkit)) {
        facts = co_await readDisplayed(session, std::move(facts), patience);
    }
    co_return facts;
}

} // namespace vesk
