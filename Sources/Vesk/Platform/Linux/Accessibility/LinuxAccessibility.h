#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Linux/Accessibility/ActiveWindow.h"
#include "Platform/Linux/Accessibility/AtspiSession.h"
#include "Platform/Linux/Accessibility/ProgramNames.h"

namespace vesk {

/// The window in front of an X11 session, and what its program shows on the accessibility bus. Only that
/// program is ever asked, so another one that hangs costs nothing. Main thread. Make it at launch: it
/// connects to the display, and in the background to the bus and to the desktop's list of programs; until
/// those are there, answers are absent.
class LinuxAccessibility final : public Accessibility {
public:
    LinuxAccessibility();

    Availability availability() const override;
    Task<std::optional<FrontApplication>> frontmostApplication() override;
    std::shared_ptr<AccessibilityElement> applicationElement(qint64 processIdentifier,
                                                             AccessibilityLimits limits) override;

    /// True once the bus and the list of programs are there; for whoever has to begin with both.
    bool isReady() const;

private:
    /// The last answer of frontmostApplication() and when it was asked for.
    struct Front {
        WindowDescription window;
        Patience::Clock::time_point asked;
    };

    static Task<std::optional<FrontApplication>> describe(std::shared_ptr<ActiveWindow> window,
                                                          AtspiSessionPointer session,
                                                          std::shared_ptr<ProgramNames> names,
                                                          std::shared_ptr<Front> front);

    std::shared_ptr<SerialQueue> m_worker;
    std::shared_ptr<ActiveWindow> m_window;
    AtspiSessionPointer m_session;
    std::shared_ptr<ProgramNames> m_names;
    std::shared_ptr<Front> m_front;
};

} // namespace vesk
