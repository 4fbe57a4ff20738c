#pragma once

#include "Platform/Accessibility.h"
#include "Support/Await.h"

#include <gtest/gtest.h>

/// What every answer of the Accessibility seam owes the logic above it. The program in front shows a window
/// and, focused in it, a plain field with this text and selection.
namespace vesk::AccessibilityContract {

inline const QString Text = QStringLiteral("\U0001F600 Dear Sir");
inline constexpr TextRange Selection{2, 4}; ///< in code points

using Element = std::shared_ptr<AccessibilityElement>;

/// Many questions one after the other take longer than a capture may.
inline constexpr AccessibilityLimits Patient{std::chrono::seconds(20), std::chrono::minutes(2)};

inline Element field(Accessibility &accessibility)
{
    const auto front = awaited(accessibility.frontmostApplication());
    EXPECT_TRUE(front);
    return front ? awaited(accessibility.applicationElement(front->processIdentifier, Patient)
                               ->element(QStringLiteral("AXFocusedUIElement")))
                 : nullptr;
}

inline void expectsAField(Accessibility &accessibility)
{
    EXPECT_TRUE(accessibility.availability().isAvailable());
    const Element element = field(accessibility);
    ASSERT_TRUE(element);
    EXPECT_TRUE(awaited(element->string(QStringLiteral("AXRole"))));
    EXPECT_NE(awaited(element->string(QStringLiteral("AXSubrole"))), QStringLiteral("AXSecureTextField"));
    // The emoji counts as one or as two.
    const qint64 one = element->textUnit() == TextUnit::utf16 ? 2 : 1;
    EXPECT_EQ(awaited(element->range(QStringLiteral("AXSelectedTextRange"))), (TextRange{one + 1, 4}));
    EXPECT_EQ(awaited(element->integer(QStringLiteral("AXNumberOfCharacters"))), one + 9);
    const std::pair<TextRange, QString> pieces[] = {
        {{0, 0}, QString()},
        {{0, one}, Text.left(2)},
        {{one - 1, 1}, one == 2 ? QString() : Text.left(2)}, // half of it is nothing
        {{one + 1, 4}, QStringLiteral("Dear")},
        {{one + 6, 1000000}, QStringLiteral("Sir")},
        {{1000, 5}, QString()},
    };
    for (const auto &[range, piece] : pieces) {
        EXPECT_EQ(awaited(element->text(range)), piece) << range.location << ' ' << range.length;
    }
    EXPECT_EQ(awaited(element->string(QStringLiteral("AXValue"))), Text);

    // Questions outlive the element that was asked.
    Task<std::optional<QString>> open = field(accessibility)->text({0, one});
    EXPECT_EQ(awaited(std::move(open)), Text.left(2));

    // What is not known, or of another kind, is absent.
    EXPECT_FALSE(awaited(element->string(QStringLiteral("AXNonsense"))));
    EXPECT_FALSE(awaited(element->integer(QStringLiteral("AXTitle"))));
    EXPECT_FALSE(awaited(element->range(QStringLiteral("AXNumberOfCharacters"))));
    EXPECT_FALSE(awaited(element->element(QStringLiteral("AXFocusedWindow"))));
    EXPECT_FALSE(awaited(element->setAttribute(QStringLiteral("AXNonsense"), true)));
}

/// The program is gone, hangs, or was never there.
inline void expectsNothing(Accessibility &accessibility, qint64 processIdentifier)
{
    const Element application = accessibility.applicationElement(processIdentifier, AccessibilityLimits());
    ASSERT_TRUE(application);
    EXPECT_FALSE(awaited(application->element(QStringLiteral("AXFocusedUIElement"))));
    EXPECT_FALSE(awaited(application->string(QStringLiteral("AXValue"))));
    EXPECT_FALSE(awaited(application->range(QStringLiteral("AXSelectedTextRange"))));
    EXPECT_FALSE(awaited(application->text({0, 1})));
}

} // namespace vesk::AccessibilityContract
