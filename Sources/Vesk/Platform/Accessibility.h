#pragma once

#include "Foundation/Task.h"
#include "Platform/Availability.h"

#include <QString>

#include <chrono>
#include <memory>
#include <optional>

namespace vesk {

/// The program in front of the others.
struct FrontApplication {
    std::optional<QString> localizedName;
    std::optional<QString> bundleIdentifier;
    qint64 processIdentifier = 0;

    friend bool operator==(const FrontApplication &, const FrontApplication &) = default;
};

/// What an element counts its text in. Programs differ, and to translate one into the other takes all of the
/// text before a place, so positions stay in the element's own units.
enum class TextUnit { codePoint, utf16 };

/// A stretch of an element's text, in the element's own units.
struct TextRange {
    qint64 location = 0;
    qint64 length = 0;

    friend bool operator==(const TextRange &, const TextRange &) = default;
};

/// How long another program may let us wait.
struct AccessibilityLimits {
    std::chrono::milliseconds call = std::chrono::milliseconds(300); ///< for one answer
    /// For all answers together, counted from the frontmostApplication() that named the program. Whatever is
    /// asked later is absent at once.
    std::chrono::milliseconds all = std::chrono::milliseconds(350);
};

/// Something that another program shows: the program itself, a window, a field. Main thread. Every answer is
/// absent when the program has none, hangs, dies or talks nonsense; none throws. A question is on its way
/// when the call returns, so questions that do not depend on each other are asked first and awaited
/// afterwards. The element may be let go while questions are open.
class AccessibilityElement {
public:
    virtual ~AccessibilityElement() = default;

    /// "AXTitle", "AXRole", "AXSubrole", "AXPlaceholderValue", "AXDescription"; "AXValue", the whole text,
    /// which may be absent where it is too long to copy.
    virtual Task<std::optional<QString>> string(QString attribute) = 0;

    virtual TextUnit textUnit() const = 0;

    /// "AXNumberOfCharacters", in the element's units.
    virtual Task<std::optional<qint64>> integer(QString attribute) = 0;

    /// "AXSelectedTextRange": the selection, or the cursor with the length 0.
    virtual Task<std::optional<TextRange>> range(QString attribute) = 0;

    /// The parameterized attribute "AXStringForRange". A range that reaches beyond the text gives what there
    /// is of it; half a surrogate pair at its ends is left out.
    virtual Task<std::optional<QString>> text(TextRange range) = 0;

    /// "AXFocusedWindow" and "AXFocusedUIElement" of an application; null when absent.
    virtual Task<std::shared_ptr<AccessibilityElement>> element(QString attribute) = 0;

    /// Asks the program for something ("AXManualAccessibility"); false when it does not know it.
    virtual Task<bool> setAttribute(QString attribute, bool value) = 0;
};

/// What other programs say about what they show. Main thread.
class Accessibility {
public:
    virtual ~Accessibility() = default;

    virtual Availability availability() const = 0;

    /// Nothing when no program is in front.
    virtual Task<std::optional<FrontApplication>> frontmostApplication() = 0;

    /// The program as an element; never null. Whether it can be asked shows in its answers.
    virtual std::shared_ptr<AccessibilityElement> applicationElement(qint64 processIdentifier,
                                                                     AccessibilityLimits limits) = 0;
};

} // namespace vesk
