#pragma once

#include "Platform/Linux/Accessibility/AbsentElement.h"
#include "Platform/Linux/Accessibility/ActiveWindow.h"
#include "Platform/Linux/Accessibility/AtspiSession.h"

namespace vesk {

/// The program of the window in front.
class ApplicationElement final : public AbsentElement {
public:
    ApplicationElement(AtspiSessionPointer session, WindowDescription window, Patience patience);

    Task<std::shared_ptr<AccessibilityElement>> element(QString attribute) override;

private:
    static Task<std::shared_ptr<AccessibilityElement>> focused(AtspiSessionPointer session,
                                                               WindowDescription window, Patience patience);

    AtspiSessionPointer m_session;
    WindowDescription m_window;
    Patience m_patience;
};

} // namespace vesk
