#include "Dictation/Rewrite.h"

#include "Foundation/VeskError.h"

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

TEST(Rewrite, onlyAWholeVisibleSelectionInAPlainFieldIsRewritten)
{
    const auto field = [](std::optional<QString> selected, bool isSecure = false, bool isCut = false) {
        FocusContext context;
        context.selectedText = std::move(selected);
        context.isSecure = isSecure;
        context.isSelectionCut = isCut;
        return std::optional(context);
    };
    const std::pair<std::optional<FocusContext>, VeskError> refused[] = {
        {std::nullopt, VeskError::noSelection()},
        {field(std::nullopt), VeskError::noSelection()},
        {field(u"   "_s), VeskError::noSelection()},
        {field(u"\n\t\u00a0"_s), VeskError::noSelection()},
        {field(u"secret"_s, true), VeskError::secureField()},
        {field(u"secret"_s, true, true), VeskError::secureField()},
        {field(u"the beginning"_s, false, true), VeskError::selectionTooLong(6000)},
        {field(u"  "_s, false, true), VeskError::selectionTooLong(6000)},
    };
    for (const auto &[context, expected] : refused) {
        try {
            Rewrite::selection(context);
            ADD_FAILURE() << "not refused: " << expected.what();
        } catch (const VeskError &error) {
            EXPECT_EQ(error, expected);
        }
    }
    EXPECT_EQ(Rewrite::selection(field(u" make me shorter\n"_s)), u" make me shorter\n"_s);
}

} // namespace vesk
