#include "Platform/Linux/Accessibility/FieldElement.h"

#include "Platform/Linux/Accessibility/SelectionRepair.h"
#include "Platform/Linux/Accessibility/TextReading.h"

#include <QCoroDBusPendingCall>

namespace vesk {

namespace {

using namespace Qt::StringLiterals;
using MaybeText = std::optional<QString>;

constexpr qint64 TooLongToCopy = 200000; // characters of "AXValue"
constexpr qint64 LongestRepair = 10000;  // characters of a selection
constexpr uint LabelledBy = 2;           // a kind of relation between elements

} // namespace

struct FieldElement::Shared {
    AtspiSessionPointer session;
    FieldFacts facts;
    Patience patience;
    std::optional<qint64> count;

    bool mayReadText() const { return facts.hasText && !facts.isSecret; }
    QDBusPendingCall askText(const QString &method, const auto &...arguments) const
    {
        return session->bus().call(patience, facts.textObject, atspi::TextInterface, method, arguments...);
    }

    QDBusPendingCall ask(const QString &interface, const QString &method) const
    {
        return session->bus().call(patience, facts.object, interface, method);
    }
    QDBusPendingCall property(const QString &interface, const QString &name) const
    {
        return session->bus().property(patience, facts.object, interface, name);
    }

    QDBusPendingCall textProperty(const QString &name) const
    {
        return session->bus().property(patience, facts.textObject, atspi::TextInterface, name);
    }

    static Task<MaybeText> placeholder(std::shared_ptr<Shared> self);
    static Task<MaybeText> description(std::shared_ptr<Shared> self);
    static Task<MaybeText> title(std::shared_ptr<Shared> self);
    static Task<MaybeText> labelName(std::shared_ptr<Shared> self);
    static Task<MaybeText> value(std::shared_ptr<Shared> self);
    static Task<std::optional<qint64>> characters(std::shared_ptr<Shared> self);
    static Task<std::optional<TextRange>> selection(std::shared_ptr<Shared> self);
    static Task<std::optional<TextRange>> repairedSelection(std::shared_ptr<Shared> self, TextRange reported,
                                                            qint64 caret);
    static Task<MaybeText> piece(std::shared_ptr<Shared> self, TextRange range);
};

Task<MaybeText> FieldElement::Shared::placeholder(std::shared_ptr<Shared> self)
{
    const QDBusMessage reply = co_await self->ask(atspi::AccessibleInterface, u"GetAttributes"_s);
    const auto attributes = atspi::attributes(reply);
    for (const QString &name : {u"placeholder-text"_s, u"placeholder"_s}) {
        if (attributes && attributes->contains(name)) {
            co_return attributes->value(name);
        }
    }
    co_return std::nullopt;
}

Task<MaybeText> FieldElement::Shared::description(std::shared_ptr<Shared> self)
{
    const QDBusMessage reply = co_await self->property(atspi::AccessibleInterface, u"Description"_s);
    const QVariant description = atspi::property(reply);
    co_return description.isValid() ? MaybeText(description.toString()) : std::nullopt;
}

Task<MaybeText> FieldElement::Shared::title(std::shared_ptr<Shared> self)
{
    const QDBusMessage reply = co_await self->property(atspi::AccessibleInterface, u"Name"_s);
    const QString name = atspi::property(reply).toString();
    // GTK 4 names what has no name after its class.
    const bool isClassName = self->facts.toolkit == u"GTK" && name.startsWith(u"Gtk") && !name.contains(u' ');
    if (!name.trimmed().isEmpty() && !isClassName) {
        co_return name;
    }
    co_return co_await labelName(self);
}

/// The name of the label that stands beside the field.
Task<MaybeText> FieldElement::Shared::labelName(std::shared_ptr<Shared> self)
{
    const QDBusMessage reply = co_await self->ask(atspi::AccessibleInterface, u"GetRelationSet"_s);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"a(ua(so))"_s) {
        co_return std::nullopt;
    }
    atspi::Reference label;
    const auto relations = reply.arguments().constFirst().value<QDBusArgument>();
    relations.beginArray();
    while (!relations.atEnd()) {
        uint kind = 0;
        QList<atspi::Reference> targets;
        relations.beginStructure();
        relations >> kind >> targets;
        relations.endStructure();
        if (kind == LabelledBy && !targets.isEmpty()) {
            label = targets.constFirst();
        }
    }
    relations.endArray();
    const QDBusMessage named =
        co_await self->session->bus().property(self->patience, label, atspi::AccessibleInterface, u"Name"_s);
    const QVariant name = atspi::property(named);
    co_return name.isValid() ? MaybeText(name.toString()) : std::nullopt;
}

Task<std::optional<qint64>> FieldElement::Shared::characters(std::shared_ptr<Shared> self)
{
    if (!self->mayReadText()) {
        co_return std::nullopt;
    }
    if (self->facts.displayed) {
        co_return self->facts.displayed->toUcs4().size();
    }
    const QDBusMessage reply = co_await self->textProperty(u"CharacterCount"_s);
    const QVariant count = atspi::property(reply);
    if (count.isValid() && count.toLongLong() >= 0) {
        self->count = count.toLongLong();
    }
    co_return self->count;
}

Task<MaybeText> FieldElement::Shared::value(std::shared_ptr<Shared> self)
{
    const auto count = co_await characters(self);
    if (!count || *count >= TooLongToCopy) {
        co_return std::nullopt;
    }
    TextRange whole;
    whole.length = *count;
    co_return co_await piece(self, whole);
}

Task<std::optional<TextRange>> FieldElement::Shared::selection(std::shared_ptr<Shared> self)
{
    if (!self->mayReadText()) {
        co_return std::nullopt;
    }
    QList<QDBusPendingCall> calls;
    calls.append(self->textProperty(u"CaretOffset"_s));
    calls.append(self->askText(u"GetNSelections"_s));
    calls.append(self->askText(u"GetSelection"_s, 0));
    const QList<QDBusMessage> replies = co_await answers(calls);
    const QVariant caret = atspi::property(replies[0]);
    // Some programs answer 0..0 for a selection that does not exist.
    const bool isSelected = replies[1].signature() == u"i"_s
        && replies[1].arguments().constFirst().toInt() > 0 && replies[2].signature() == u"ii"_s;
    const int start = isSelected ? replies[2].arguments().at(0).toInt() : 0;
    const int end = isSelected ? replies[2].arguments().at(1).toInt() : 0;
    if (start != end && std::min(start, end) >= 0) {
        TextRange selection;
        selection.location = std::min(start, end);
        selection.length = std::abs(end - start);
        co_return co_await repairedSelection(self, selection, caret.isValid() ? caret.toInt() : -1);
    }
    // Labels and whole pages have a text and a cursor as well, but nobody types there.
    const bool isField = self->facts.states.has(atspi::State::editable)
        || self->facts.role == atspi::Role::Text || self->facts.role == atspi::Role::Entry
        || self->facts.role == atspi::Role::Terminal;
    if (!isField || !caret.isValid() || caret.toInt() < 0) {
        co_return std::nullopt;
    }
    co_return TextRange{caret.toInt(), 0};
}

Task<std::optional<TextRange>> FieldElement::Shared::repairedSelection(std::shared_ptr<Shared> self,
                                                                       TextRange reported, qint64 caret)
{
    const bool isTrusted = caret == reported.location + reported.length;
    if (isTrusted || self->facts.toolkit != u"Chromium") {
        co_return reported;
    }
    // A selection that is not known for certain must not be rewritten: better none.
    if (reported.length > LongestRepair) {
        co_return std::nullopt;
    }
    const MaybeText between = co_await piece(self, reported);
    co_return between ? SelectionRepair::repaired(reported, caret, *between) : std::nullopt;
}

Task<MaybeText> FieldElement::Shared::piece(std::shared_ptr<Shared> self, TextRange range)
{
    if (!self->mayReadText()) {
        co_return std::nullopt;
    }
    if (range.length <= 0) {
        co_return QString();
    }
    if (self->facts.displayed) {
        const QList<uint> all = self->facts.displayed->toUcs4();
        const QList<uint> piece = all.mid(range.location, range.length);
        co_return QString::fromUcs4(reinterpret_cast<const char32_t *>(piece.constData()), piece.size());
    }
    // Programs disagree about ranges that reach beyond their text.
    if (!self->count) {
        co_await characters(self);
    }
    const std::optional<qint64> count = self->count;
    if (!count) {
        co_return std::nullopt;
    }
    const qint64 start = std::clamp<qint64>(range.location, 0, *count);
    const qint64 end = start + std::min(range.length, *count - start);
    if (start == end) {
        co_return QString();
    }
    co_return co_await readText(self->session, self->facts, self->patience, static_cast<int>(start),
                                static_cast<int>(end));
}

FieldElement::FieldElement(AtspiSessionPointer session, FieldFacts facts, Patience patience)
    : m_shared(std::make_shared<Shared>(Shared{std::move(session), std::move(facts), patience, std::nullopt}))
{
}

Task<MaybeText> FieldElement::string(QString attribute)
{
    const FieldFacts &facts = m_shared->facts;
    if (attribute == u"AXRole") {
        co_return atspi::accessibilityRole(facts.role, facts.states);
    }
    if (attribute == u"AXSubrole") {
        co_return facts.isSecret ? MaybeText(u"AXSecureTextField"_s) : std::nullopt;
    }
    const std::pair<QString, Task<MaybeText> (*)(std::shared_ptr<Shared>)> readers[] = {
        {u"AXPlaceholderValue"_s, &Shared::placeholder},
        {u"AXDescription"_s, &Shared::description},
        {u"AXTitle"_s, &Shared::title},
        {u"AXValue"_s, &Shared::value},
    };
    for (const auto &[name, read] : readers) {
        if (name == attribute && !facts.isSecret) {
            co_return co_await read(m_shared);
        }
    }
    co_return std::nullopt;
}

Task<std::optional<qint64>> FieldElement::integer(QString attribute)
{
    if (attribute != u"AXNumberOfCharacters") {
        co_return std::nullopt;
    }
    co_return co_await Shared::characters(m_shared);
}

TextUnit FieldElement::textUnit() const { return unitOf(m_shared->facts); }

Task<std::optional<TextRange>> FieldElement::range(QString attribute)
{
    if (attribute != u"AXSelectedTextRange") {
        co_return std::nullopt;
    }
    co_return co_await Shared::selection(m_shared);
}

Task<MaybeText> FieldElement::text(TextRange range) { return Shared::piece(m_shared, range); }

} // namespace vesk
