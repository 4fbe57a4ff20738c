#include "Desktop/FieldReader.h"
#include "Desktop/Peer.h"

#include <gtest/gtest.h>

namespace vesk::test {

TEST(PrivateDesktop, anEditorShowsWhatIsTypedIntoIt)
{
    Screen screen;
    const auto editor = startMousepad(screen, QStringLiteral("before "));
    FieldReader reader;
    ASSERT_EQ(reader.textWhen(editor->process().id(), [](const QString &text) { return !text.isEmpty(); }),
              QStringLiteral("before "));
    screen.tap(115); // End
    screen.tap(38);  // the key labelled A
    EXPECT_EQ(reader.textWhen(editor->process().id(), [](const QString &text) { return text.size() > 7; }),
              QStringLiteral("before a"));
}

} // namespace vesk::test
