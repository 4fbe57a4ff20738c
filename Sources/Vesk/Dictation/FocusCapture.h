#pragma once

#include "Foundation/FocusContext.h"
#include "Foundation/Task.h"
#include "Platform/Accessibility.h"

#include <memory>
#include <optional>

/// Reads the field that dictated text is meant for. Main thread. What cannot be read is absent; nothing is
/// thrown, and no program, however large its text or slow its answers, is asked for more than a few pieces
/// within AccessibilityLimits. `accessibility` must outlive the task.
namespace vesk::FocusCapture {

inline constexpr qint64 BeforeLimit = 1500;  ///< characters before the cursor
inline constexpr qint64 AfterLimit = 300;    ///< characters after the cursor or the selection
inline constexpr qint64 ValueLimit = 200000; ///< a whole value of so many UTF-16 units is too big to copy

/// The focused field of the frontmost application, its selection cut to `selectionLimit` characters. Nothing
/// when no application is in front. Of a password field nothing but its role is read.
Task<std::optional<FocusContext>> capture(Accessibility &accessibility, qint64 selectionLimit);

/// The context with `textBefore`, `selectedText`, `textAfter` and `isSelectionCut` filled from the element.
/// A cut never leaves a part of a character: what might be one is dropped.
Task<FocusContext> readText(std::shared_ptr<AccessibilityElement> element, qint64 selectionLimit,
                            FocusContext context);

} // namespace vesk::FocusCapture
