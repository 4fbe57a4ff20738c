// The main job whole, through the application as it is installed: a key is held, a person's recorded voice
// comes in through the microphone, the words stand in an editor that no one here wrote.

#include "Desktop/ApplicationFixture.h"
#include "Desktop/ControlUser.h"
#include "Desktop/Peer.h"
#include "Desktop/TrayPeer.h"
#include "Dictation/HistoryStore.h"

#include <QDir>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

constexpr int EndKey = 115;

Config onThisMachine(bool cleanup = false)
{
    Config config;
    config.speech = u"mac"_s;
    config.cleanup = cleanup;
    return config;
}

bool isSomething(const QString &text) { return !text.isEmpty(); }
auto is(QString expected)
{
    return [expected = std::move(expected)](const QString &text) { return text == expected; };
}

qsizetype recordingsLeft() { return QDir::temp().entryList({u"vesk-*"_s}, QDir::Files).size(); }

} // namespace

TEST_F(ApplicationTest, theSpokenWordsStandInTheEditorAndTheClipboardComesBack)
{
    configure(onThisMachine(), false);
    const auto editor = startMousepad(screen, u"He wrote:"_s);
    ASSERT_EQ(textOf(*editor, isSomething), u"He wrote:"_s);
    screen.tap(EndKey);
    const auto copied = copy("a person's own");
    application().dictate(QStringLiteral(VESK_TEST_SPEECH_FOLDER "/sample.wav"));
    const QString text = textOf(*editor, [](const QString &now) { return now.size() > 40; });
    EXPECT_TRUE(text.startsWith(u"He wrote: "_s)) << qPrintable(text);
    for (const QString &word : {u"tried"_s, u"failed"_s, u"matter"_s, u"better"_s}) {
        EXPECT_TRUE(text.contains(word, Qt::CaseInsensitive)) << qPrintable(word);
    }
    EXPECT_TRUE(eventually([] { return clipboard() == "a person's own"; }));
    EXPECT_TRUE(isLogged("dictation how=mac "));
    EXPECT_TRUE(isLogged(" app=Mousepad"));
    EXPECT_FALSE(ShippedApplication::log().contains("better")) << "dictated text is never logged";
    EXPECT_TRUE(eventually([&text] {
        const QString remembered = HistoryStore().entries().value(0).text;
        return remembered.size() > 40 && text.endsWith(remembered);
    }));
}

TEST_F(ApplicationTest, whatTheServerMakesOfItIsTyped)
{
    const struct {
        const char *what;
        Config config;
        bool isSignedIn;
        QByteArray operation;
        int status;
        QByteArray body;
        QString typed; ///< empty: as heard on the machine
        QByteArray logged;
    } rows[] = {
        {"upload", byUpload(), true, "dictation", 200, R"({"text":"Thank you.","raw":"thank you","words":2})",
         u"Thank you."_s, "dictation how=cloud chars=9>10"},
        {"upload, heard but not cleaned up", byUpload(), true, "dictation", 502,
         R"({"error":"upstream","raw":"thank you"})", u"thank you"_s, "dictation how=cloud-raw chars=9>9"},
        {"clean-up", onThisMachine(true), true, "cleanup", 200, R"({"text":"Cleaned."})", u"Cleaned."_s,
         "dictation how=mac "},
        {"clean-up that fails", onThisMachine(true), true, "cleanup", 500, R"({"error":"busy"})", QString(),
         " note=1"},
        {"nobody signed in", onThisMachine(true), false, "cleanup", 200, R"({"text":"Never asked"})",
         QString(), " note=1"},
        {"nobody signed in, for upload", byUpload(), false, "dictation", 200, R"({"text":"Never asked"})",
         QString(), "dictation how=mac "},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        configure(row.config, row.isSignedIn);
        answer(row.operation, row.status, row.body);
        const auto before = server.requests(row.operation).size();
        const auto editor = startMousepad(screen);
        speak();
        const QString text = textOf(*editor, isSomething);
        if (row.typed.isEmpty()) {
            EXPECT_TRUE(text.startsWith(u"Ever tried"_s)) << qPrintable(text);
        } else {
            EXPECT_EQ(text, row.typed);
        }
        EXPECT_TRUE(isLogged(row.logged)) << ShippedApplication::log().right(300).constData();
        EXPECT_EQ(server.requests(row.operation).size(), before + (row.isSignedIn ? 1 : 0));
        EXPECT_EQ(recordingsLeft(), 0);
    }
}

TEST_F(ApplicationTest, anUploadIsTheRecordingWithItsContext)
{
    configure(byUpload(), true);
    const auto editor = startMousepad(screen, u"Dear Sir"_s);
    ASSERT_EQ(textOf(*editor, isSomething), u"Dear Sir"_s);
    screen.tap(EndKey);
    speak();
    ASSERT_TRUE(isLogged("dictation how=cloud "));
    const auto parts = server.requests("dictation").at(0).parts();
    ASSERT_TRUE(parts);
    const auto part = [&parts](const QByteArray &name) {
        const auto found = std::ranges::find(*parts, name, &MultipartPart::name);
        return found == parts->end() ? QByteArray() : found->content;
    };
    EXPECT_EQ(part("audio").mid(4, 4), "ftyp") << "an MPEG-4 file";
    EXPECT_GT(part("audio").size(), 5'000) << "two and a half seconds at 32 kbit/s";
    EXPECT_TRUE(part("context").contains("Dear Sir")) << part("context").constData();
}

TEST_F(ApplicationTest, aWordAddedInItsWindowGoesWithTheNextRequest)
{
    for (const bool isUpload : {true, false}) {
        SCOPED_TRACE(isUpload ? "upload" : "clean-up");
        configure(isUpload ? byUpload() : onThisMachine(true), true);
        run(QStringLiteral(VESK_TEST_PROGRAM), {}); // opens the window of the one that runs
        ControlUser user(application().processId());
        EXPECT_TRUE(user.press(u"list item"_s, u"Dictionary"_s));
        EXPECT_TRUE(user.type(u"New word"_s, u"Nadezhda"_s));
        EXPECT_TRUE(user.press(u"push button"_s, u"Add"_s));
        EXPECT_TRUE(user.finds(u"list item"_s, u"Nadezhda"_s));
        const auto editor = startMousepad(screen);
        ASSERT_EQ(textOf(*editor, is(QString())), QString());
        speak();
        const QByteArray operation = isUpload ? "dictation" : "cleanup";
        ASSERT_TRUE(eventually([&] { return !server.requests(operation).empty(); }));
        const QByteArray sent = server.requests(operation).back().body;
        EXPECT_TRUE(sent.contains("vocabulary") && sent.contains("Nadezhda")) << sent.right(500).constData();
        EXPECT_TRUE(isLogged("dictation how="));
    }
}

TEST_F(ApplicationTest, tapsAndOtherKeysTypeNothing)
{
    configure(onThisMachine(), false);
    const auto editor = startMousepad(screen, u"as it was"_s);
    ASSERT_EQ(textOf(*editor, isSomething), u"as it was"_s);
    const qsizetype remembered = HistoryStore().entries().size();
    const auto say = [] {
        const auto voice = application().soundServer().play(briefly(), u"desk"_s);
        ASSERT_TRUE(eventually([&] { return !voice->isRunning(); }));
    };
    screen.tap(ShippedApplication::DictationKey);
    say();
    application().hold();
    say();
    application().cancel();
    // A dictation that ends is the proof that the others left nothing behind them.
    screen.tap(EndKey);
    speak();
    const QString text = textOf(*editor, [](const QString &now) { return now.size() > 12; });
    EXPECT_EQ(text.count(u"tried"_s, Qt::CaseInsensitive), 1) << qPrintable(text);
    EXPECT_TRUE(eventually([&] { return HistoryStore().entries().size() > remembered; }));
    EXPECT_EQ(HistoryStore().entries().size(), remembered + 1);
    EXPECT_EQ(recordingsLeft(), 0);
}

TEST_F(ApplicationTest, aDoubleTapRecordsUntilTheNextPress)
{
    configure(onThisMachine(), false);
    const auto editor = startMousepad(screen);
    screen.tap(ShippedApplication::DictationKey);
    screen.tap(ShippedApplication::DictationKey);
    const auto voice = application().soundServer().play(briefly(), u"desk"_s);
    ASSERT_TRUE(eventually([&] { return !voice->isRunning(); }));
    screen.tap(ShippedApplication::DictationKey);
    const QString text = textOf(*editor, isSomething);
    EXPECT_TRUE(text.startsWith(u"Ever tried"_s)) << qPrintable(text);
}

TEST_F(ApplicationTest, aVoiceCommandRewritesTheSelectionOrLeavesItAlone)
{
    const struct {
        const char *what;
        int status;
        QByteArray body;
        QString after;
        QByteArray logged;
    } rows[] = {
        {"replaced", 200, R"({"text":"AS IT WAS","unchanged":false,"instruction":"make it loud"})",
         u"AS IT WAS"_s, " result=replaced"},
        {"unchanged", 200, R"({"text":"as it was","unchanged":true,"instruction":"leave it"})",
         u"as it was"_s, " result=unchanged"},
        {"refused", 500, R"({"error":"busy"})", u"as it was"_s, "command error app=Mousepad"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.what);
        configure(byUpload(), true);
        answer("command", row.status, row.body);
        const auto editor = startMousepad(screen, u"as it was"_s);
        ASSERT_EQ(textOf(*editor, isSomething), u"as it was"_s);
        selectAll();
        speak(CommandKey);
        EXPECT_TRUE(isLogged(row.logged)) << ShippedApplication::log().right(300).constData();
        EXPECT_EQ(textOf(*editor, is(row.after)), row.after);
        EXPECT_EQ(recordingsLeft(), 0);
    }
}

TEST_F(ApplicationTest, aSelectionThatMovedIsNotTouched)
{
    configure(byUpload(), true);
    answer("command", 200, R"({"text":"AS IT WAS","unchanged":false,"instruction":"make it loud"})",
           std::chrono::seconds(1));
    const auto editor = startMousepad(screen, u"as it was"_s);
    ASSERT_EQ(textOf(*editor, isSomething), u"as it was"_s);
    selectAll();
    speak(CommandKey);
    ASSERT_TRUE(eventually([this] { return !server.requests("command").empty(); }));
    screen.tap(EndKey);
    EXPECT_TRUE(isLogged(" result=moved")) << ShippedApplication::log().right(300).constData();
    EXPECT_EQ(textOf(*editor, is(u"as it was"_s)), u"as it was"_s);
}

TEST_F(ApplicationTest, whatFailedToUploadIsTriedAgainFromTheMenuAlsoAfterARestart)
{
    configure(byUpload(), true);
    answer("dictation", 500, R"({"error":"busy"})");
    TrayPeer tray;
    ASSERT_EQ(tray.ask(u"item"_s), u"item"_s);
    const auto editor = startMousepad(screen);
    speak();
    ASSERT_TRUE(isLogged("dictation kept for retry"));
    for (const bool isRestarted : {false, true}) {
        SCOPED_TRACE(isRestarted ? "after a restart" : "at once");
        if (isRestarted) {
            QFile stray(QDir::temp().filePath(u"vesk-00000000-0000-0000-0000-000000000000.m4a"_s));
            ASSERT_TRUE(stray.open(QIODevice::WriteOnly));
            application().kill();
            application().start();
            EXPECT_FALSE(stray.exists()) << "nobody asked to keep it";
            answer("dictation", 200, R"({"text":"Thank you.","raw":"thank you","words":2})");
        }
        const auto before = server.requests("dictation").size();
        // The new item may still be on its way to the panel.
        EXPECT_TRUE(eventually([&] { return tray.ask(u"menu"_s).contains(u"Retry Last Dictation"_s); }));
        ASSERT_EQ(tray.ask(u"click Retry Last Dictation"_s), u"clicked"_s);
        EXPECT_TRUE(eventually([&] { return server.requests("dictation").size() > before; }));
    }
    EXPECT_EQ(textOf(*editor, isSomething), u"Thank you."_s);
    EXPECT_TRUE(eventually([] { return recordingsLeft() == 0; }));
    EXPECT_FALSE(tray.ask(u"menu"_s).contains(u"Retry"_s));
}

TEST_F(ApplicationTest, whatWasBeingRecordedOrSentWhenItWasKilledIsOffered)
{
    configure(byUpload(), true);
    server.script("dictation", behaving(Script::Manner::silent));
    TrayPeer tray;
    const auto editor = startMousepad(screen);
    for (const bool isSending : {false, true}) {
        SCOPED_TRACE(isSending ? "while it was sent" : "while it was recorded");
        const auto before = server.requests("dictation").size();
        application().hold();
        const auto voice = application().soundServer().play(briefly(), u"desk"_s);
        ASSERT_TRUE(eventually([&] { return !voice->isRunning(); }));
        if (isSending) {
            screen.keyUp(ShippedApplication::DictationKey);
            ASSERT_TRUE(eventually([&] { return server.requests("dictation").size() > before; }));
        }
        application().kill();
        screen.keyUp(ShippedApplication::DictationKey);
        application().start();
        ASSERT_EQ(tray.ask(u"item"_s), u"item"_s);
        EXPECT_TRUE(eventually([&] { return tray.ask(u"menu"_s).contains(u"Retry Last Dictation"_s); }));
    }
    answer("dictation", 200, R"({"text":"Thank you.","raw":"thank you","words":2})");
    ASSERT_EQ(tray.ask(u"click Retry Last Dictation"_s), u"clicked"_s);
    EXPECT_EQ(textOf(*editor, isSomething), u"Thank you."_s);
    EXPECT_TRUE(eventually([] { return recordingsLeft() == 0; }));
}

TEST_F(ApplicationTest, settingsBrokenByHandAreNamedInTheMenuAndTheFormerOnesStay)
{
    configure(onThisMachine(), false);
    TrayPeer tray;
    ASSERT_EQ(tray.ask(u"item"_s), u"item"_s);
    QFile file(Config::file());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QByteArray good = file.readAll();
    file.resize(0);
    file.seek(0);
    file.write(R"({"cleanup":"perhaps"})");
    file.close();
    const QString menu = tray.ask(u"menu"_s);
    EXPECT_TRUE(menu.startsWith(u'[') && menu.contains(u"cleanup"_s)) << qPrintable(menu);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(good);
    file.close();
    EXPECT_FALSE(tray.ask(u"menu"_s).startsWith(u'['));
}

TEST_F(ApplicationTest, onlyTheFirstLaunchOpensAWindowWhereNothingIsMissing)
{
    configure(onThisMachine(), false);
    QFile::remove(Config::file());
    for (const bool isFirst : {true, false}) {
        application().kill();
        application().start(); // until the model is there, which is after the windows
        const std::chrono::milliseconds patience = isFirst ? Screen::Patience : std::chrono::milliseconds(0);
        EXPECT_EQ(screen.waitForWindow(u"^Set Up Vesk$"_s, patience).has_value(), isFirst);
    }
}

TEST_F(ApplicationTest, aSecondStartOpensTheWindowOfTheFirstAndQuitEndsIt)
{
    configure(onThisMachine(), false);
    TrayPeer tray;
    ASSERT_EQ(tray.ask(u"item"_s), u"item"_s);
    const auto launches = ShippedApplication::log().count("launch speech=");
    run(QStringLiteral(VESK_TEST_PROGRAM), {});
    EXPECT_TRUE(screen.waitForWindow(u"^Vesk$"_s));
    EXPECT_EQ(ShippedApplication::log().count("launch speech="), launches);
    ASSERT_EQ(tray.ask(u"click Quit Vesk"_s), u"clicked"_s);
    EXPECT_TRUE(eventually([] { return !application().isRunning(); }));
    application().start();
}

} // namespace vesk::test
