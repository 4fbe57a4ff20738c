// What is left of the person's when a program ends at the wrong moment: ours, or the one that is typed into.

#include "Desktop/ApplicationFixture.h"
#include "Dictation/HistoryStore.h"

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

constexpr int EndKey = 115;

bool something(const QString &text) { return !text.isEmpty(); }
bool nothing(const QString &text) { return text.isEmpty(); }

} // namespace

TEST_F(ApplicationTest, theClipboardIsThePersonsAlsoAfterAKill)
{
    configure(byUpload(), true);
    answer("dictation", 200, R"({"text":"Thank you.","raw":"thank you","words":2})");
    for (const bool isGivenBack : {true, false}) {
        SCOPED_TRACE(isGivenBack ? "after it was given back" : "while the text lay there");
        const auto editor = startMousepad(screen);
        ASSERT_EQ(textOf(*editor, nothing), QString());
        const auto copied = copy("a person's own");
        speak();
        EXPECT_EQ(textOf(*editor, something), u"Thank you."_s);
        if (isGivenBack) {
            ASSERT_TRUE(eventually([] { return clipboard() == "a person's own"; }));
        }
        // The second process that keeps it is started in the lull after the paste.
        ASSERT_TRUE(eventually([] { return countRunning("vesk-clipboard-") > 0; }));
        application().kill();
        EXPECT_TRUE(eventually([] { return clipboard() == "a person's own"; }));
        copy("something else");
        EXPECT_TRUE(eventually([] { return countRunning("vesk-clipboard-") == 0; }));
        application().start();
    }
}

TEST_F(ApplicationTest, aProgramClosedBeforeTheTextCameLosesNothing)
{
    configure(byUpload(), true);
    answer("dictation", 200, R"({"text":"Thank you.","raw":"thank you","words":2})", std::chrono::seconds(2));
    const auto other = startMousepad(screen, u"He wrote:"_s);
    ASSERT_EQ(textOf(*other, something), u"He wrote:"_s);
    screen.tap(EndKey);
    auto closed = startMousepad(screen);
    ASSERT_EQ(textOf(*closed, nothing), QString());
    const auto copied = copy("a person's own");
    speak();
    closed.reset();
    EXPECT_TRUE(isLogged("dictation how=cloud"));
    EXPECT_TRUE(eventually([] { return HistoryStore().entries().value(0).text == u"Thank you."; }));
    EXPECT_TRUE(
        textOf(*other, [](const QString &text) { return text.contains(u"Thank"); }).contains(u"Thank you."_s))
        << "it goes where the person is now";
    EXPECT_TRUE(eventually([] { return clipboard() == "a person's own"; }));
}

} // namespace vesk::test
