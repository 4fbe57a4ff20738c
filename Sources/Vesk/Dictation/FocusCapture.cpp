#include "Dictation/FocusCapture.h"

#include "Dictation/TextPiece.h"

#include <QStringList>

#include <algorithm>

namespace vesk::FocusCapture {

namespace {

using namespace Qt::StringLiterals;
using Element = std::shared_ptr<AccessibilityElement>;
using MaybeText = std::optional<QString>;

/// The three stretches of interest, clamped to a text of `count` characters.
struct Spans {
    Spans(TextRange selection, qint64 selectionLimit, qint64 count)
        : isSelected(selection.length >= 1)
    {
        const qint64 start = std::clamp<qint64>(selection.location, 0, count);
        const qint64 length = std::clamp<qint64>(selection.length, 0, count - start);
        const qint64 end = start + length;
        before.location = std::max<qint64>(start - BeforeLimit, 0);
        before.length = start - before.location;
        selected = {start, std::min(std::max<qint64>(selectionLimit, 0), length)};
        after = {end, std::min(AfterLimit, count - end)};
        isCutSelected = selected.length < length;
        isCutAfter = end + after.length < count;
    }

    bool isCutBefore() const { return before.location > 0; }

    bool isSelected;
    TextRange before;
    TextRange selected;
    TextRange after;
    bool isCutSelected = false;
    bool isCutAfter = false;
};

void fill(FocusContext &context, const Spans &spans, MaybeText before, MaybeText selected, MaybeText after)
{
    const auto whole = [](MaybeText piece, TextPiece::Cut cut, bool isCut) {
        return piece && isCut ? TextPiece::whole(*piece, cut) : std::move(piece);
    };
    context.textBefore = whole(std::move(before), TextPiece::Cut::start, spans.isCutBefore());
    if (spans.isSelected) {
        context.selectedText = whole(std::move(selected), TextPiece::Cut::end, spans.isCutSelected);
    }
    context.textAfter = whole(std::move(after), TextPiece::Cut::end, spans.isCutAfter);
}

/// An empty stretch is known without a question.
Task<MaybeText> piece(Element element, TextRange range)
{
    if (range.length == 0) {
        co_return QString();
    }
    co_return co_await element->text(range);
}

Task<FocusContext> readPieces(Element element, Spans spans, FocusContext context)
{
    Task<MaybeText> before = piece(element, spans.before);
    Task<MaybeText> selected = piece(element, spans.selected);
    Task<MaybeText> after = piece(element, spans.after);
    MaybeText textBefore = co_await before;
    MaybeText selectedText = co_await selected;
    MaybeText textAfter = co_await after;
    fill(context, spans, std::move(textBefore), std::move(selectedText), std::move(textAfter));
    co_return context;
}

Task<FocusContext> cutValue(Element element, TextRange selection, qint64 selectionLimit, FocusContext context)
{
    const MaybeText value = co_await element->string(u"AXValue"_s);
    if (!value || value->size() >= ValueLimit) {
        co_return context;
    }
    const TextUnit unit = element->textUnit();
    const Spans spans(selection, selectionLimit, TextPiece::length(*value, unit));
    fill(context, spans, TextPiece::inRange(*value, spans.before, unit),
         TextPiece::inRange(*value, spans.selected, unit), TextPiece::inRange(*value, spans.after, unit));
    co_return context;
}

Task<MaybeText> readLabel(Element element)
{
    // In the order of preference; all are asked for before the first is awaited.
    Task<MaybeText> placeholder = element->string(u"AXPlaceholderValue"_s);
    Task<MaybeText> description = element->string(u"AXDescription"_s);
    Task<MaybeText> title = element->string(u"AXTitle"_s);
    QStringList candidates;
    candidates.append((co_await placeholder).value_or(QString()));
    candidates.append((co_await description).value_or(QString()));
    candidates.append((co_await title).value_or(QString()));
    for (const QString &candidate : candidates) {
        if (!candidate.trimmed().isEmpty()) {
            co_return candidate.trimmed();
        }
    }
    co_return std::nullopt;
}

Task<MaybeText> readTitle(Element application)
{
    const Element window = co_await application->element(u"AXFocusedWindow"_s);
    if (!window) {
        co_return std::nullopt;
    }
    co_return co_await window->string(u"AXTitle"_s);
}

Task<FocusContext> readElement(Element element, qint64 selectionLimit, FocusContext context)
{
    Task<MaybeText> role = element->string(u"AXRole"_s);
    Task<MaybeText> subrole = element->string(u"AXSubrole"_s);
    context.role = co_await role;
    context.isSecure = co_await subrole == u"AXSecureTextField"_s;
    if (context.isSecure) {
        co_return context;
    }
    Task<MaybeText> label = readLabel(element);
    context = co_await readText(element, selectionLimit, std::move(context));
    context.label = co_await label;
    co_return context;
}

} // namespace

Task<FocusContext> readText(std::shared_ptr<AccessibilityElement> element, qint64 selectionLimit,
                            FocusContext context)
{
    Task<std::optional<TextRange>> selectionTask = element->range(u"AXSelectedTextRange"_s);
    Task<std::optional<qint64>> countTask = element->integer(u"AXNumberOfCharacters"_s);
    Task<MaybeText> probeTask = element->text(TextRange());
    const std::optional<TextRange> selection = co_await selectionTask;
    const std::optional<qint64> count = co_await countTask;
    const MaybeText probe = co_await probeTask;
    if (!selection) {
        co_return context;
    }
    context.isSelectionCut = selectionLimit < selection->length;
    if (count && probe) {
        const Spans spans(*selection, selectionLimit, std::max<qint64>(*count, 0));
        co_return co_await readPieces(std::move(element), spans, std::move(context));
    }
    co_return co_await cutValue(std::move(element), *selection, selectionLimit, std::move(context));
}

Task<std::optional<FocusContext>> capture(Accessibility &accessibility, qint64 selectionLimit)
{
    const std::optional<FrontApplication> front = co_await accessibility.frontmostApplication();
    if (!front) {
        co_return std::nullopt;
    }
    FocusContext context;
    context.appName = front->localizedName.value_or(QString());
    context.bundleID = front->bundleIdentifier.value_or(QString());
    const Element application =
        accessibility.applicationElement(front->processIdentifier, AccessibilityLimits());
    // Programs that show web pages build what they tell about them only on this request; the others refuse.
    Task<bool> request = application->setAttribute(u"AXManualAccessibility"_s, true);
    Task<MaybeText> title = readTitle(application);
    const Element element = co_await application->element(u"AXFocusedUIElement"_s);
    if (element) {
        context = co_await readElement(element, selectionLimit, std::move(context));
    }
    context.windowTitle = co_await title;
    co_await request;
    co_return context;
}

} // namespace vesk::FocusCapture
