#include "Dictation/ControllerTest.h"
#include "Dictation/KeptRecordings.h"

namespace vesk {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using enum HotkeyKey;

namespace {

const QString NotSignedIn =
    u"Typed as heard. Sign in to Vesk in Settings to clean up what you dictate. (5 s)"_s;
const QString Kept = u" The recording is kept: Retry Last Dictation in the menu. (5 s)"_s;

Script upstream(const QByteArray &raw)
{
    return answering({502, "{\"error\":\"upstream\",\"message\":\"The writer rests.\"" + raw + "}", {}});
}

} // namespace

TEST_F(ControllerTest, everyRoadEndsWithItsTextItsMessageAndItsTraces)
{
    struct Row {
        const char *what;
        const char *speech;
        bool isSignedIn;
        bool cleanup;
        bool isSecure;
        std::optional<std::pair<QByteArray, Script>> script;
        QString pasted; ///< nothing for none
        QString shown;
        QString log; ///< a part of the dictation's line
        int remembered;
        int requests;
        qsizetype files;
    };
    const std::vector<Row> rows = {
        {"on the machine, as heard",
         "mac",
         true,
         false,
         false,
         {},
         u" um hello there"_s,
         u"-"_s,
         u"how=mac chars=14>14 "_s,
         1,
         0,
         0},
        {"on the machine, cleaned up",
         "mac",
         true,
         true,
         false,
         {},
         u" Hello there."_s,
         u"-"_s,
         u"how=mac chars=14>12 "_s,
         1,
         1,
         0},
        {"on the machine, not signed in",
         "cloud",
         false,
         true,
         false,
         {},
         u" um hello there"_s,
         NotSignedIn,
         u" app=Editor note=1"_s,
         1,
         0,
         0},
        {"clean-up fails", "mac", true, true, false, std::pair(QByteArray("cleanup"), upstream({})),
         u" um hello there"_s, u"Typed as heard. The writer rests. (5 s)"_s, u" note=1"_s, 1, 1, 0},
        {"clean-up leaves nothing",
         "mac",
         true,
         true,
         false,
         std::pair(QByteArray("cleanup"), answering(jsonAnswer("{\"text\":\"  \"}"))),
         {},
         u"Nothing to insert (5 s)"_s,
         u"chars=14>2 "_s,
         1,
         1,
         0},
        {"a password field, on the machine",
         "mac",
         true,
         true,
         true,
         {},
         u"um hello there"_s,
         u"-"_s,
         u"how=mac chars=14>14 "_s,
         0,
         0,
         0},
        {"a password field, otherwise for upload",
         "cloud",
         true,
         true,
         true,
         {},
         u"um hello there"_s,
         u"-"_s,
         u"how=secure chars=14>14 "_s,
         0,
         0,
         0},
        {"uploaded", "cloud", true, true, false,
         std::pair(QByteArray("dictation"),
                   answering(jsonAnswer(R"({"text":"Fine.","raw":"um fine","words":1})"))),
         u" Fine."_s, u"-"_s, u"how=cloud chars=7>5 "_s, 1, 1, 0},
        {"uploaded, heard but not written", "cloud", true, true, false,
         std::pair(QByteArray("dictation"), upstream(R"(,"raw":"um fine")")), u" um fine"_s,
         u"Typed as heard. The writer rests. (5 s)"_s, u"how=cloud-raw chars=7>7 "_s, 1, 1, 0},
        {"not heard",
         "cloud",
         true,
         true,
         false,
         std::pair(QByteArray("dictation"), upstream({})),
         {},
         u"The writer rests."_s + Kept,
         u"dictation kept for retry total_ms="_s,
         0,
         1,
         2},
        {"the server is gone",
         "cloud",
         true,
         true,
         false,
         std::pair(QByteArray("dictation"), behaving(Script::Manner::refuse)),
         {},
         ServerError::offline().errorDescription() + Kept,
         u"dictation kept for retry total_ms="_s,
         0,
         1,
         2},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        AccountFile::remove();
        if (row.isSignedIn) {
            signIn();
        }
        configure([&](Config &config) {
            config.speech = QLatin1String(row.speech);
            config.cleanup = row.cleanup;
        });
        focusField(u"word"_s, {}, row.isSecure);
        hear(u"um hello there"_s);
        history.clear();
        QFile::remove(Log::file());
        pasteboard.boards = {};
        const std::size_t requests = server.requests().size();
        if (row.script) {
            server.scriptOnce(row.script->first, row.script->second);
        }
        QString seen; // the text, when the other program's paste key comes
        keys.onPress = [&] { seen = pasted(); };
        speak(rightOption);
        EXPECT_EQ(seen, row.pasted);
        EXPECT_EQ(display.last(), row.shown);
        EXPECT_TRUE(log().contains(row.log.toUtf8())) << log().constData();
        EXPECT_EQ(history.entries().size(), row.remembered);
        EXPECT_EQ(server.requests().size() - requests, row.requests);
        EXPECT_EQ(recordings().size(), row.files) << qPrintable(recordings().join(u' '));
        EXPECT_EQ(controller->canRetry(), row.files > 0);
        EXPECT_EQ(display.indicator, DictationController::Indicator::idle);
        clock.advance(1s); // the pasteboard goes back
    }
}

TEST_F(ControllerTest, pressesTapsAndOtherKeysFollowTheirRules)
{
    configure([](Config &config) {
        config.speech = u"mac"_s;
        config.cleanup = false;
    });
    controller->pressed(rightOption);
    clock.advance(299ms);
    controller->released(rightOption);
    EXPECT_TRUE(controller->isIdle()) << "a tap";
    clock.advance(449ms);
    controller->pressed(rightOption);
    EXPECT_EQ(display.last(), u"listening locked"_s);
    clock.advance(50ms);
    controller->released(rightOption);
    controller->otherKeyUsed();
    EXPECT_EQ(display.last(), u"listening locked"_s) << "hands-free goes on";
    EXPECT_TRUE(eventually([this] { return display.loudBlocks > 3; }));
    controller->pressed(rightOption);
    EXPECT_EQ(display.last(), u"Writing it down"_s);
    controller->pressed(rightOption);
    controller->released(rightOption);
    EXPECT_TRUE(awaitIdle());
    EXPECT_EQ(history.entries().size(), 1);

    clock.advance(1s);
    controller->pressed(rightOption);
    clock.advance(700ms);
    controller->released(rightOption, 410ms);
    EXPECT_TRUE(controller->isIdle()) << "a tap whose end had to wait";
    clock.advance(500ms);
    controller->pressed(rightOption, 470ms);
    EXPECT_EQ(display.last(), u"listening locked"_s) << "and a press that had to wait";
    controller->stopListening({});

    clock.advance(1s);
    controller->pressed(rightOption);
    clock.advance(100ms);
    controller->released(rightOption);
    clock.advance(450ms);
    controller->pressed(rightOption);
    EXPECT_EQ(display.last(), u"listening"_s) << "the second press came too late";
    clock.advance(400ms);
    controller->otherKeyUsed();
    EXPECT_EQ(display.last(), u"-"_s) << "a shortcut";
    controller->released(rightOption);
    EXPECT_TRUE(controller->isIdle());
    EXPECT_EQ(history.entries().size(), 1);
}

TEST_F(ControllerTest, whatCannotStartSaysSo)
{
    const auto shown = [this](HotkeyKey key) {
        display.said.clear();
        controller->pressed(key);
        eventually([this] { return controller->isIdle(); });
        controller->released(key);
        return display.last();
    };
    EXPECT_EQ(shown(rightCommand), u"Sign in to Vesk to use voice commands (5 s)"_s);
    permissions.sound = Availability::unavailable(u"no"_s);
    EXPECT_EQ(shown(rightOption), u"set-up"_s);
    permissions.sound = Availability::available();
    models.isInstalled = false;
    EXPECT_EQ(shown(rightOption), u"The speech recognition model is missing (5 s)"_s);
    models.isInstalled = true;
    sound.unplug(u"desk"_s);
    EXPECT_EQ(shown(rightOption), u"No microphone found (5 s)"_s);
    EXPECT_TRUE(log().contains("error No microphone found"));
    sound.plug(u"desk"_s);
    signIn();
    const QByteArray folder = qgetenv("TMPDIR");
    // A file, in which none can be made: fails at once, before anything else of the session has begun.
    qputenv("TMPDIR", QFile::encodeName(Config::file()));
    for (const HotkeyKey key : {rightOption, rightCommand}) {
        EXPECT_FALSE(shown(key).startsWith(u"listening"_s));
        clock.advance(1s); // no early look at a selection is left behind
        EXPECT_TRUE(controller->isIdle());
    }
    qputenv("TMPDIR", folder);
    Files::replace(Config::file(), "{");
    EXPECT_TRUE(shown(rightOption).endsWith(u" (6 s)"_s)) << "settings that cannot be read";
    EXPECT_EQ(recordings(), QStringList());
}

TEST_F(ControllerTest, aRecordingThatAFullDiskCutShortIsNotTakenForWhole)
{
    signIn();
    const QString reason = u".m4a cannot be written: File too large"_s; // the reason that the limit gives
    const QString said = u"The end of what you said is missing. "_s;
    const struct {
        HotkeyKey key;
        Script script;
        QString begin;
        qsizetype files; ///< a recording and its mark
    } rows[] = {
        {rightOption, answering(jsonAnswer(R"({"text":"Fine.","raw":"um fine","words":1})")), said, 0},
        {rightCommand, {}, u"Selection left as it was. "_s, 0},
        {rightOption, upstream({}), u"The writer rests."_s + Kept.chopped(6) + u' ' + said, 2},
    };
    for (const auto &row : rows) {
        focusField(u"word"_s, u"selected"_s);
        server.script("dictation", row.script);
        hold(row.key, 1s);
        const FullDisk disk(0);
        controller->released(row.key);
        ASSERT_TRUE(awaitIdle());
        EXPECT_TRUE(display.last().startsWith(row.begin)) << qPrintable(display.last());
        EXPECT_TRUE(display.last().endsWith(reason + u" (5 s)"_s)) << qPrintable(display.last());
        EXPECT_EQ(recordings().size(), row.files);
        clock.advance(1s);
    }
    EXPECT_TRUE(server.requests("command").empty());
}

TEST_F(ControllerTest, silenceIsNeitherUploadedNorRecognised)
{
    signIn();
    for (const QString &speech : {u"mac"_s, u"cloud"_s}) {
        configure([&](Config &config) { config.speech = speech; });
        sound.sound(u"desk"_s, 0);
        controller->pressed(rightOption);
        eventually([this] { return sound.recordings() > 0; });
        clock.advance(1s);
        controller->released(rightOption);
        ASSERT_TRUE(awaitIdle());
        EXPECT_TRUE(display.last().startsWith(u"The microphone (The desk) "_s)) << qPrintable(display.last());
        EXPECT_TRUE(log().contains(QString(u"dictation empty " + speech).toUtf8()));
    }
    EXPECT_EQ(server.requests().size(), 0);
    EXPECT_EQ(recordings(), QStringList());
    EXPECT_EQ(history.entries().size(), 0);
}

TEST_F(ControllerTest, aKeptRecordingIsRetriedAlsoByTheNextProcess)
{
    signIn();
    server.script("dictation", upstream({}));
    speak(rightOption);
    speak(rightOption);
    ASSERT_TRUE(controller->canRetry());
    EXPECT_EQ(recordings().size(), 2) << "only the second one, and its mark";
    QFile stray(QDir::temp().filePath(u"vesk-stray.m4a"_s));
    ASSERT_TRUE(stray.open(QIODevice::WriteOnly) && stray.write("x") == 1);
    stray.close();

    controller = makeController();
    const auto kept = KeptRecordings::recover();
    ASSERT_TRUE(kept);
    EXPECT_FALSE(stray.exists()) << "what nobody kept is deleted";
    controller->offerRetry(*kept);
    controller->retryLast();
    EXPECT_EQ(display.last(), u"Trying again"_s);
    ASSERT_TRUE(awaitIdle());
    EXPECT_TRUE(controller->canRetry()) << "it failed again";
    server.script("dictation", answering(jsonAnswer(R"({"text":"Fine.","raw":"um fine","words":1})")));
    controller->retryLast();
    ASSERT_TRUE(awaitIdle());
    EXPECT_FALSE(controller->canRetry());
    EXPECT_EQ(history.entries().value(0).text, u"Fine."_s);
    EXPECT_GT(history.entries().value(0).seconds, 0);
    EXPECT_EQ(recordings(), QStringList());
}

TEST_F(ControllerTest, aRetryThatFailsForAPasswordFieldKeepsTheRecording)
{
    signIn();
    server.script("dictation", upstream({}));
    speak(rightOption);
    ASSERT_TRUE(controller->canRetry());
    focusField(u"word"_s, {}, true);
    configure([](Config &config) { config.locale = u"bg-BG"_s; });
    controller->retryLast();
    ASSERT_TRUE(awaitIdle());
    EXPECT_TRUE(log().contains("error "));
    EXPECT_TRUE(controller->canRetry());
    EXPECT_EQ(recordings().size(), 2);
}

TEST_F(ControllerTest, onlyWhatMayBeKeptIsMarkedWhileItIsSpoken)
{
    signIn();
    struct Row {
        HotkeyKey key;
        bool isSecure;
        bool isMarked;
    };
    for (const Row &row :
         {Row{rightOption, false, true}, Row{rightOption, true, false}, Row{rightCommand, false, false}}) {
        focusField(u"word"_s, u"selected"_s, row.isSecure);
        hold(row.key, 1s);
        const QStringList left = recordings();
        EXPECT_EQ(left.filter(u".kept"_s).size(), row.isMarked ? 1 : 0);
        controller->otherKeyUsed(); // the process would have been killed here
        EXPECT_TRUE(eventually([] { return recordings().isEmpty(); }));
    }
}

TEST_F(ControllerTest, theServerIsToldOnlyWhatThePersonAllows)
{
    signIn();
    focusField(u"Dear Ann"_s);
    for (const bool isAllowed : {true, false}) {
        configure([&](Config &config) {
            config.speech = u"mac"_s;
            config.useAppContext = isAllowed;
            config.vocabulary = {u"Zürich"_s};
        });
        speak(rightOption);
        const QByteArray body = server.requests("cleanup").back().body;
        EXPECT_EQ(body.contains("Dear Ann"), isAllowed);
        EXPECT_EQ(body.contains("Editor"), isAllowed);
        EXPECT_TRUE(body.contains("Zürich"));
        clock.advance(1s);
    }
}

TEST_F(ControllerTest, textThatCannotBeInsertedIsStillThere)
{
    configure([](Config &config) {
        config.speech = u"mac"_s;
        config.cleanup = false;
    });
    keys.held = 10s;
    hold(rightOption, 1s);
    controller->released(rightOption);
    ASSERT_TRUE(eventually([this] { return !clock.waiting().empty(); }));
    clock.advance(3s);
    ASSERT_TRUE(awaitIdle());
    EXPECT_TRUE(display.last().startsWith(u"Nothing was inserted"_s));
    EXPECT_EQ(history.entries().value(0).text, u"hello there"_s);
    controller->copyLastText();
    EXPECT_EQ(pasted(), u"hello there"_s);
}

TEST_F(ControllerTest, mayEndAtAnyMoment)
{
    signIn();
    server.scriptEverything(behaving(Script::Manner::silent));
    for (const QString &speech : {u"mac"_s, u"cloud"_s}) {
        configure([&](Config &config) { config.speech = speech; });
        controller->pressed(rightOption);
        controller = makeController(); // before it has really started
        hold(rightOption, 1s);
        controller = makeController(); // while it listens
        hold(rightOption, 1s);
        controller->released(rightOption);
        ASSERT_TRUE(eventually([&] { return !server.requests().empty(); }));
        controller = makeController(); // while the server works
        EXPECT_TRUE(controller->isIdle());
    }
}

} // namespace vesk
