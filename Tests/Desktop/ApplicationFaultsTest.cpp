// What is left of the person's when something ends or stands still at the wrong moment: ours, the program
// that is typed into, the disk, the whole machine.

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

TEST_F(ApplicationTest, aFullDiskCostsNoWordThatWasHeard)
{
    for (const QString &speech : {u"mac"_s, u"cloud"_s}) {
        SCOPED_TRACE(speech.toStdString());
        Config config;
        config.speech = speech;
        config.cleanup = false;
        configure(config, true);
        answer("dictation", 200, R"({"text":"Ever.","raw":"ever","words":1})");
        const QList<Dictation> remembered = HistoryStore().entries();
        const auto editor = startMousepad(screen);
        ASSERT_EQ(textOf(*editor, nothing), QString());
        const auto copied = copy("a person's own");
        screen.keyDown(ShippedApplication::DictationKey);
        const auto voice = application().soundServer().play(briefly(), u"desk"_s);
        ASSERT_TRUE(eventually([&] { return !voice->isRunning(); }));
        application().fillDisk();
        screen.keyUp(ShippedApplication::DictationKey);
        EXPECT_TRUE(textOf(*editor, something).startsWith(u"Ever"_s));
        EXPECT_TRUE(eventually([] { return clipboard() == "a person's own"; }));
        application().emptyDisk();
        EXPECT_EQ(HistoryStore().entries().size(), remembered.size()) << "there was no room for it";
        speak();
        EXPECT_TRUE(isLogged("dictation how=")) << "and it goes on where there is room again";
        EXPECT_TRUE(eventually([&] { return HistoryStore().entries().size() > remembered.size(); }));
    }
}

TEST_F(ApplicationTest, aMachineThatSleptInTheHoldTypesWhatWasSaid)
{
    Config config;
    config.speech = u"mac"_s;
    config.cleanup = false;
    configure(config, false);
    // How long it sleeps makes no difference to the test; by hand it was a minute.
    const std::chrono::seconds sleep(qEnvironmentVariable("VESK_TEST_SLEEP", u"2"_s).toInt());
    for (const bool isLetGoInSleep : {true, false}) {
        SCOPED_TRACE(isLetGoInSleep ? "let go while it slept" : "let go afterwards");
        const auto editor = startMousepad(screen);
        ASSERT_EQ(textOf(*editor, nothing), QString());
        screen.keyDown(ShippedApplication::DictationKey);
        const auto voice = application().soundServer().play(briefly(), u"desk"_s);
        ASSERT_TRUE(eventually([&] { return !voice->isRunning(); }));
        application().fallAsleep();
        pause(sleep);
        if (isLetGoInSleep) {
            screen.keyUp(ShippedApplication::DictationKey);
        }
        application().wake();
        if (!isLetGoInSleep) {
            const auto more = application().soundServer().play(briefly(), u"desk"_s);
            ASSERT_TRUE(eventually([&] { return !more->isRunning(); }));
            screen.keyUp(ShippedApplication::DictationKey);
        }
        const qsizetype times = isLetGoInSleep ? 1 : 2;
        const QString text = textOf(*editor, [times](const QString &now) {
            return now.count(u"tried"_s, Qt::CaseInsensitive) >= times;
        });
        EXPECT_EQ(text.count(u"tried"_s, Qt::CaseInsensitive), times) << qPrintable(text);
    }
}

} // namespace vesk::test
