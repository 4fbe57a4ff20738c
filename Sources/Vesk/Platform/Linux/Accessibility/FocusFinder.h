#pragma once

#include "Platform/Linux/Accessibility/ActiveWindow.h"
#include "Platform/Linux/Accessibility/FieldFacts.h"

/// The way from the window in front to its focused element, asking no program but the window's own.
namespace vesk::FocusFinder {

/// A program on the bus with the windows that it shows there.
struct Found {
    QString service;
    QList<atspi::Reference> windows;
};

/// The program of the window; nothing when it shows nothing on the bus.
Task<std::optional<Found>> findProgram(AtspiSessionPointer session, WindowDescription window,
                                       Patience patience);

/// The focused element of the window; nothing when nothing in it has the focus.
Task<std::optional<FieldFacts>> findFocused(AtspiSessionPointer session, WindowDescription window,
                                            Patience patience);

} // namespace vesk::FocusFinder
