// What the indicator says when a dictation or a command does not end as it was meant, read from the shipped
// program by somebody who only listens. Each sentence differs from the one before, so that none is mistaken
// for an older one.

#include "Desktop/ApplicationFixture.h"
#include "Desktop/ControlUser.h"
#include "Desktop/FieldPrograms.h"
#include "Foundation/Files.h"
#include "Foundation/VeskError.h"
#include "Server/ServerError.h"

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

constexpr int EndKey = 115;
const QString Kept = u" The recording is kept: Retry Last Dictation in the menu."_s;

Config cleanedUpHere()
{
    Config config;
    config.speech = u"mac"_s;
    return config;
}

Script failing(int status, const QByteArray &body) { return answering({status, body, {}}); }

} // namespace

TEST_F(ApplicationTest, everyWayADictationFailsIsSaid)
{
    const struct {
        Config config;
        bool isSignedIn;
        QByteArray operation;
        Script script;
        QString said;
    } rows[] = {
        {byUpload(), true, "dictation", behaving(Script::Manner::refuse),
         ServerError::offline().errorDescription() + Kept},
        {byUpload(), true, "dictation",
         failing(401, R"({"error":"signed_out","message":"You are signed out."})"),
         u"You are signed out."_s + Kept},
        {byUpload(), true, "dictation", failing(502, R"({"error":"upstream","message":"The writer rests."})"),
         u"The writer rests."_s + Kept},
        {byUpload(), true, "dictation",
         failing(502, R"({"error":"upstream","message":"The writer rests.","raw":"um"})"),
         u"Typed as heard. The writer rests."_s},
        {byUpload(), true, "dictation", failing(200, R"({"text":" ","raw":"um","words":0})"),
         u"Nothing to insert"_s},
        {cleanedUpHere(), true, "cleanup",
         failing(502, R"({"error":"upstream","message":"The writer rests."})"),
         u"Typed as heard. The writer rests."_s},
        {cleanedUpHere(),
         false,
         "cleanup",
         {},
         u"Typed as heard. Sign in to Vesk in Settings to clean up what you dictate."_s},
    };
    const auto editor = startMousepad(screen, u"as it was"_s);
    ASSERT_FALSE(textOf(*editor, [](const QString &text) { return !text.isEmpty(); }).isEmpty());
    ControlUser user(application().processId());
    for (const auto &row : rows) {
        SCOPED_TRACE(row.said.toStdString());
        configure(row.config, row.isSignedIn);
        server.script(row.operation, row.script);
        speak();
        EXPECT_TRUE(user.sees(row.said));
    }
    // What is kept for a retry is no business of the cases that follow.
    application().kill();
    for (const QString &recording : QDir::temp().entryList({u"vesk-*"_s}, QDir::Files)) {
        EXPECT_TRUE(QDir::temp().remove(recording));
    }
    application().start();
}

TEST_F(ApplicationTest, everyWayACommandFailsIsSaid)
{
    const QByteArray rewritten = R"({"text":"AS IT WAS","unchanged":false,"instruction":"make it loud"})";
    const auto editor = startMousepad(screen, u"as it was"_s);
    ASSERT_FALSE(textOf(*editor, [](const QString &text) { return !text.isEmpty(); }).isEmpty());
    ControlUser user(application().processId());
    const auto command = [&](const Script &script, const QString &said) {
        SCOPED_TRACE(said.toStdString());
        server.script("command", script);
        speak(CommandKey);
        EXPECT_TRUE(user.sees(said));
    };
    configure(byUpload(), false);
    command({}, u"Sign in to Vesk to use voice commands"_s);
    configure(byUpload(), true);
    screen.tap(EndKey);
    command({}, VeskError::noSelection().errorDescription());
    selectAll();
    command(failing(502, R"({"error":"upstream","message":"The writer rests."})"),
            u"Selection left as it was. The writer rests."_s);
    command(failing(200, R"({"text":"as it was","unchanged":true,"instruction":"leave it"})"),
            u"Selection left as it was: no change to make"_s);
    QObject context;
    QObject::connect(&server, &VeskServer::received, &context, [&] { screen.tap(EndKey); });
    command({.answer = jsonAnswer(rewritten), .delay = std::chrono::seconds(1)},
            VeskError::selectionChanged().errorDescription());
    {
        const auto large = startMousepad(screen, u"too much of it "_s.repeated(500));
        ASSERT_FALSE(textOf(*large, [](const QString &text) { return !text.isEmpty(); }).isEmpty());
        selectAll();
        command({}, VeskError::selectionTooLong(6000).errorDescription());
    }
    const auto password = startQt(screen, u"password"_s, u"hidden"_s, {0, 6});
    ASSERT_TRUE(eventually([&] { return reader.focusedField(password->process().id()).has_value(); }));
    command({}, VeskError::secureField().errorDescription());
}

TEST_F(ApplicationTest, whatKeepsADictationFromBeginningIsSaid)
{
    configure(cleanedUpHere(), false);
    ControlUser user(application().processId());
    const auto press = [&](const QString &said) {
        application().hold();
        EXPECT_TRUE(user.sees(said));
        application().cancel();
    };
    const QByteArray good = Files::read(Config::file());
    Files::replace(Config::file(), "{ \"cleanup\": ");
    press(u"config.json cannot be read: "_s);
    Files::replace(Config::file(), good);

    application().soundServer().removeMicrophone(u"desk"_s);
    press(VeskError::noMicrophone().errorDescription());
    application().soundServer().addMicrophone({u"desk"_s, {}, 1});

    screen.keyDown(ShippedApplication::DictationKey); // and nothing is said
    pause(std::chrono::seconds(1));
    screen.keyUp(ShippedApplication::DictationKey);
    EXPECT_TRUE(user.sees(u"is very quiet: nothing heard"_s));
}

} // namespace vesk::test
