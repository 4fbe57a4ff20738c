#include "Dictation/ControllerTest.h"

namespace vesk {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using enum HotkeyKey;

namespace {

Script commanded(const QByteArray &text, bool isUnchanged = false)
{
    return answering(jsonAnswer("{\"text\":\"" + text + "\",\"unchanged\":" + (isUnchanged ? "true" : "false")
                                + ",\"instruction\":\"shorter\"}"));
}

} // namespace

TEST_F(ControllerTest, aCommandReplacesTheSelectionOrSaysWhyNot)
{
    const std::tuple<Script, QString, QString, QByteArray> rows[] = {
        {commanded("short"), u" short "_s, u"-"_s, "instruction_chars=7 server_ms="},
        {commanded("long text", true),
         {},
         u"Selection left as it was: no change to make (5 s)"_s,
         "result=unchanged"},
        {answering({500, R"({"error":"other","message":"Not today."})", {}}),
         {},
         u"Selection left as it was. Not today. (5 s)"_s,
         "command error app=Editor Not today."},
    };
    signIn();
    for (const auto &[script, replacement, shown, result] : rows) {
        SCOPED_TRACE(result.constData());
        focusField(u"A "_s, u" long text "_s);
        history.clear();
        server.scriptOnce("command", script);
        QString seen;
        keys.onPress = [&] { seen = pasted(); };
        speak(rightCommand);
        EXPECT_EQ(seen, replacement);
        EXPECT_EQ(display.last(), shown);
        EXPECT_TRUE(log().contains(result)) << log().constData();
        EXPECT_EQ(history.entries().size(), replacement.isEmpty() ? 0 : 1);
        EXPECT_EQ(recordings(), QStringList());
        clock.advance(1s);
    }
    const auto parts = server.requests("command").back().parts();
    ASSERT_TRUE(parts);
    EXPECT_TRUE(std::ranges::any_of(*parts, [](const MultipartPart &part) {
        return part.name == "selection" && part.content == " long text ";
    }));
}

TEST_F(ControllerTest, aResultWhoseSelectionMovedStaysInTheMenu)
{
    signIn();
    focusField(u"A "_s, u"long text"_s);
    server.script("command", commanded("short"));
    QObject::connect(&server, &VeskServer::received, &server,
                     [this] { focusField(u"A "_s, u"other text"_s); });
    speak(rightCommand);
    EXPECT_EQ(display.last(), u"The selection changed. The result is in the menu (5 s)"_s);
    EXPECT_EQ(pasted(), QString());
    ASSERT_TRUE(controller->hasLastText());
    controller->copyLastText();
    EXPECT_EQ(pasted(), u"short"_s);
    EXPECT_TRUE(log().contains("result=moved"));
}

TEST_F(ControllerTest, aCommandWithoutUsableSelectionIsStoppedEarly)
{
    signIn();
    const std::tuple<QString, bool, QString> rows[] = {
        {u""_s, false, u"Select text before you speak a command (5 s)"_s},
        {u" \n\t\u00a0"_s, false, u"Select text before you speak a command (5 s)"_s},
        {u"secret"_s, true, u"Commands do not work in password fields (5 s)"_s},
        {QString(6001, u'x'), true, u"Commands do not work in password fields (5 s)"_s},
        {QString(6001, u'x'), false, u"The selection is over 6000 characters (5 s)"_s},
        {QString(6001, u' '), false, u"The selection is over 6000 characters (5 s)"_s},
    };
    for (const auto &[selected, isSecure, shown] : rows) {
        focusField(u"A "_s, selected, isSecure);
        controller->pressed(rightCommand);
        EXPECT_EQ(display.last(), u"listening command"_s);
        clock.advance(300ms);
        ASSERT_TRUE(awaitIdle());
        EXPECT_EQ(display.last(), shown);
        controller->released(rightCommand);
    }
    EXPECT_EQ(server.requests().size(), 0);
    EXPECT_TRUE(eventually([] { return recordings().isEmpty(); }));
}

} // namespace vesk
