#include "Platform/Linux/Accessibility/ApplicationElement.h"

#include "Platform/Linux/Accessibility/CursorBlock.h"
#include "Platform/Linux/Accessibility/FieldElement.h"
#include "Platform/Linux/Accessibility/FocusFinder.h"

namespace vesk {

namespace {

using Element = std::shared_ptr<AccessibilityElement>;

/// The window as the display knows it, which answers even when its program does not.
class WindowElement final : public AbsentElement {
public:
    explicit WindowElement(QString title)
        : m_title(std::move(title))
    {
    }

    Task<std::optional<QString>> string(QString attribute) override
    {
        co_return attribute == u"AXTitle" && !m_title.isEmpty() ? std::optional(m_title) : std::nullopt;
    }

private:
    QString m_title;
};

} // namespace

ApplicationElement::ApplicationElement(AtspiSessionPointer session, WindowDescription window,
                                       Patience patience)
    : m_session(std::move(session))
    , m_window(std::move(window))
    , m_patience(patience)
{
}

Task<Element> ApplicationElement::element(QString attribute)
{
    if (attribute == u"AXFocusedWindow" && m_window.window != 0) {
        co_return std::make_shared<WindowElement>(m_window.title);
    }
    if (attribute == u"AXFocusedUIElement") {
        co_return co_await focused(m_session, m_window, m_patience);
    }
    co_return Element();
}

Task<Element> ApplicationElement::focused(AtspiSessionPointer session, WindowDescription window,
                                          Patience patience)
{
    auto facts = co_await FocusFinder::findFocused(session, window, patience);
    if (!facts) {
        co_return Element();
    }
    facts->textObject = co_await blockAtCursor(session, *facts, patience);
    co_return std::make_shared<FieldElement>(session, std::move(*facts), patience);
}

} // namespace vesk
