#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Clock.h"

#include <QMap>
#include <QStringList>

#include <type_traits>

namespace vesk {

/// What a test's program shows, and how badly it answers. Shared with every element of it.
struct FakeProgram {
    FrontApplication front;
    std::optional<QString> windowTitle;
    bool hasFocusedElement = true;

    QMap<QString, QString> strings; ///< of the focused element, by attribute
    std::optional<QString> text;    ///< of the focused element
    std::optional<TextRange> selection;
    TextUnit unit = TextUnit::codePoint; ///< of `selection`; pieces are always cut in code points
    bool tellsCount = true;
    bool answersRanges = true;
    bool copiesValue = true;

    Clock *clock = nullptr;             ///< with one, every answer takes `delay`
    std::chrono::milliseconds delay{0}; ///< beyond AccessibilityLimits it is absent
    int answersUntilDeath = 1 << 20;    ///< then everything is absent

    QStringList asked;       ///< every question, in order
    qint64 copied = 0;       ///< code points handed out by "AXStringForRange"
    qint64 valuesCopied = 0; ///< how often the whole value was handed out
};

/// Another program as the accessibility interface shows it, told by a FakeProgram. Text is counted in code
/// points, as the seam says.
class FakeAccessibilityElement final : public AccessibilityElement {
public:
    enum class Kind { application, window, field };
    struct View {
        std::shared_ptr<FakeProgram> program;
        Kind kind;
        AccessibilityLimits limits;
        Clock::Monotonic end; ///< of the time for all answers
    };

    explicit FakeAccessibilityElement(View view)
        : m_view(std::move(view))
    {
    }

    TextUnit textUnit() const override { return m_view.program->unit; }

    Task<std::optional<QString>> string(QString attribute) override
    {
        return answer(attribute, [attribute](View &view) { return stringOf(view, attribute); });
    }

    Task<std::optional<qint64>> integer(QString attribute) override
    {
        return answer(attribute, [attribute](View &view) {
            const FakeProgram &program = *view.program;
            const bool isKnown = attribute == u"AXNumberOfCharacters" && program.text && program.tellsCount;
            return isKnown ? std::optional<qint64>(program.text->toUcs4().size()) : std::nullopt;
        });
    }

    Task<std::optional<TextRange>> range(QString attribute) override
    {
        return answer(attribute, [attribute](View &view) {
            return attribute == u"AXSelectedTextRange" ? view.program->selection : std::nullopt;
        });
    }

    Task<std::optional<QString>> text(TextRange range) override
    {
        return answer(QStringLiteral("AXStringForRange"), [range](View &view) {
            FakeProgram &program = *view.program;
            if (!program.text || !program.answersRanges) {
                return std::optional<QString>();
            }
            const QList<uint> piece = program.text->toUcs4().mid(range.location, range.length);
            program.copied += piece.size();
            return std::optional(
                QString::fromUcs4(reinterpret_cast<const char32_t *>(piece.constData()), piece.size()));
        });
    }

    Task<std::shared_ptr<AccessibilityElement>> element(QString attribute) override
    {
        return answer(attribute, [attribute](View &view) {
            const bool isWindow = attribute == u"AXFocusedWindow" && view.program->windowTitle;
            const bool isField = attribute == u"AXFocusedUIElement" && view.program->hasFocusedElement;
            std::shared_ptr<AccessibilityElement> found;
            if (view.kind == Kind::application && (isWindow || isField)) {
                View seen = view;
                seen.kind = isWindow ? Kind::window : Kind::field;
                found = std::make_shared<FakeAccessibilityElement>(std::move(seen));
            }
            return found;
        });
    }

    Task<bool> setAttribute(QString attribute, bool) override
    {
        return answer(attribute, [](View &) { return false; });
    }

private:
    static std::optional<QString> stringOf(View &view, const QString &name)
    {
        FakeProgram &program = *view.program;
        if (view.kind != Kind::field) {
            return view.kind == Kind::window && name == u"AXTitle" ? program.windowTitle : std::nullopt;
        }
        if (name == u"AXValue") {
            program.valuesCopied += program.copiesValue ? 1 : 0;
            return program.copiesValue ? program.text : std::nullopt;
        }
        return program.strings.contains(name) ? std::optional(program.strings[name]) : std::nullopt;
    }

    template <typename Find>
    auto answer(const QString &question, Find find) -> Task<std::invoke_result_t<Find, View &>>
    {
        m_view.program->asked.append(question);
        return late(m_view, std::move(find));
    }

    template <typename Find>
    static auto late(View view, Find find) -> Task<decltype(find(view))>
    {
        FakeProgram &program = *view.program;
        if (program.clock) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(view.end - program.clock->monotonic());
            const auto patience = std::max(std::min(view.limits.call, left), std::chrono::milliseconds(0));
            co_await program.clock->after(std::min(program.delay, patience));
            if (program.delay > patience) {
                co_return {};
            }
        }
        if (program.answersUntilDeath-- <= 0) {
            co_return {};
        }
        co_return find(view);
    }

    View m_view;
};

class FakeAccessibility final : public Accessibility {
public:
    Availability availability() const override { return available; }

    Task<std::optional<FrontApplication>> frontmostApplication() override
    {
        m_asked = program && program->clock ? program->clock->monotonic() : Clock::Monotonic();
        co_return program ? std::optional(program->front) : std::nullopt;
    }

    std::shared_ptr<AccessibilityElement> applicationElement(qint64 processIdentifier,
                                                             AccessibilityLimits limits) override
    {
        auto asked = program;
        if (!program || program->front.processIdentifier != processIdentifier) {
            asked = std::make_shared<FakeProgram>();
            asked->answersUntilDeath = 0;
        }
        using Element = FakeAccessibilityElement;
        return std::make_shared<Element>(
            Element::View{std::move(asked), Element::Kind::application, limits, m_asked + limits.all});
    }

    Availability available = Availability::available();
    std::shared_ptr<FakeProgram> program; ///< the one in front; null for none

private:
    Clock::Monotonic m_asked;
};

} // namespace vesk
