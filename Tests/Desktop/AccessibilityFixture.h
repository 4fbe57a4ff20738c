#pragma once

#include "Desktop/FieldPrograms.h"
#include "Dictation/FocusCapture.h"
#include "Platform/Linux/Accessibility/LinuxAccessibility.h"
#include "Support/Await.h"

#include <gtest/gtest.h>

namespace vesk::test {

constexpr qint64 SelectionLimit = 2000;

/// A Vesk that has been running for a while, in front of a desktop.
class AccessibilityTest : public testing::Test {
protected:
    AccessibilityTest()
    {
        if (!eventually([this] { return accessibility.isReady(); })) {
            throw std::runtime_error("no accessibility bus");
        }
    }

    FocusContext captured()
    {
        return awaited(FocusCapture::capture(accessibility, SelectionLimit)).value_or(FocusContext());
    }

    /// The context once it satisfies the condition: a program that has just started needs a moment.
    template <typename Condition>
    FocusContext contextWhen(Condition condition)
    {
        FocusContext context;
        const bool isSo = eventually(
            [&] {
                context = captured();
                return condition(context);
            },
            std::chrono::seconds(30));
        EXPECT_TRUE(isSo) << describe(context);
        return context;
    }

    FocusContext contextWithText()
    {
        return contextWhen([](const FocusContext &context) {
            return context.textBefore && context.textAfter
                && !QString(*context.textBefore + *context.textAfter).isEmpty();
        });
    }

    static std::string describe(const FocusContext &context)
    {
        const auto shown = [](const std::optional<QString> &text) {
            return text ? u'\'' + text->left(80) + u'\'' : u"absent"_s;
        };
        const QStringList parts = {context.appName,
                                   context.bundleID,
                                   shown(context.windowTitle),
                                   shown(context.role),
                                   shown(context.label),
                                   shown(context.textBefore),
                                   shown(context.selectedText),
                                   shown(context.textAfter),
                                   context.isSecure ? u"secure"_s : u"plain"_s};
        return parts.join(u" | ").toStdString();
    }

    Screen screen;
    LinuxAccessibility accessibility;
};

} // namespace vesk::test
