#include "CommandLine/ProgramRun.h"
#include "Foundation/Config.h"
#include "Foundation/Files.h"
#include "Foundation/Json.h"
#include "Support/TemporaryHome.h"
#include "Support/VeskServer.h"

#include <gmock/gmock.h>

namespace vesk {

using namespace Qt::StringLiterals;
using testing::MatchesRegex;

namespace {

class ServerCommandTest : public HomeTest {
protected:
    ServerCommandTest()
    {
        Config config;
        config.serverURL = server.baseURL().toString();
        config.vocabulary = {u"Zürich"_s};
        config.write();
        signIn(QJsonObject{{u"token"_s, VeskServer::validToken()}, {u"email"_s, u"someone@example.com"_s}});
    }

    static void signIn(const QJsonValue &account)
    {
        Files::replace(Config::directory() + u"/account.json", Json::compact(account));
    }

    void answer(const QByteArray &path, int status, const QByteArray &body)
    {
        server.script(path, answering({status, body, {}}));
    }

    VeskServer server;
};

const QString Sample = QStringLiteral(VESK_TEST_SPEECH_FOLDER "/sample.wav");

void expectOutput(const ProgramRun &run, const char *form)
{
    EXPECT_EQ(run.status, 0) << run.errors.toStdString();
    EXPECT_THAT(run.output.toStdString(), MatchesRegex(form));
    EXPECT_EQ(run.errors, QString());
}

} // namespace

TEST_F(ServerCommandTest, eachJobPrintsItsLines)
{
    answer("command", 200, R"({"text": "Shorter.", "unchanged": false, "instruction": "shorter"})");
    answer("dictation", 200, R"({"text": "Clean.", "raw": "um clean", "words": 1})");
    expectOutput(runVesk({u"--text"_s, u"um so hello"_s}), "server [0-9]+ ms: So hello\\.\n");
    expectOutput(runVesk({u"--text"_s, u"make it shorter"_s, u"--selected"_s, u" A long text. "_s}),
                 "server [0-9]+ ms: Shorter\\.\n");
    expectOutput(runVesk({u"--file"_s, Sample, u"--cloud"_s, u"--text"_s, u"ignored"_s}),
                 "heard: um clean\nserver [0-9]+ ms: Clean\\.\n");
    expectOutput(runVesk({u"--file"_s, Sample}),
                 "speech [0-9]+ ms: Ever tried.*\nserver [0-9]+ ms: Ever tried.*\n");

    answer("command", 200, R"({"text": "whatever", "unchanged": true, "instruction": "x"})");
    expectOutput(runVesk({u"--text"_s, u"make it shorter"_s, u"--selected"_s, u"x"_s}),
                 "server [0-9]+ ms: \\(unchanged\\)\n");
}

TEST_F(ServerCommandTest, theFieldIsDescribedByTheOptions)
{
    runVesk({u"--text"_s, u"hello"_s});
    runVesk({u"--text"_s, u"hello"_s, u"--app"_s, u"Mail"_s, u"--bundle"_s, u"org.mail"_s, u"--window"_s,
             u"Re: you"_s, u"--before"_s, u"Dear "_s});
    const auto requests = server.requests("cleanup");
    ASSERT_EQ(requests.size(), 2U);
    const char *expected[] = {
        R"({"context":{"app":{"bundle_id":"","name":"TextEdit"},"secure":false},"transcript":"hello","vocabulary":["Zürich"]})",
        R"({"context":{"app":{"bundle_id":"org.mail","name":"Mail"},"field":{"text_before":"Dear "},"secure":false,"window_title":"Re: you"},"transcript":"hello","vocabulary":["Zürich"]})",
    };
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(Json::compact(Json::object(requests[i].body)), expected[i]);
    }
}

TEST_F(ServerCommandTest, aSelectionThatCannotBeRewrittenNeverReachesTheServer)
{
    const std::pair<QString, const char *> rows[] = {
        {u"   "_s, "error: Select text before you speak a command\n"},
        {QString(6001, u'x'), "error: The selection is over 6000 characters\n"},
    };
    for (const auto &[selected, sentence] : rows) {
        const ProgramRun run = runVesk({u"--text"_s, u"shorter"_s, u"--selected"_s, selected});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.errors.toStdString(), sentence);
    }
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(ServerCommandTest, whatTheServerSaysIsWhatThePersonReads)
{
    const std::tuple<int, const char *, const char *> rows[] = {
        {401, R"({"error": "signed_out"})", "error: The Vesk server answered 401.\n"},
        {500, R"({"error": "upstream", "message": "The model is busy.", "raw": "E42"})",
         "error: The model is busy.\n"},
        {200, "<html>A hotel's welcome page</html>", "error: not valid JSON .*\n"},
        {204, "", "error: \"text\" must be a text, not nothing\n"},
    };
    for (const auto &[status, body, sentence] : rows) {
        answer("cleanup", status, body);
        const ProgramRun run = runVesk({u"--text"_s, u"hello"_s});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.output, QString());
        EXPECT_THAT(run.errors.toStdString(), MatchesRegex(sentence));
    }
    server.script("cleanup", behaving(Script::Manner::cutOff));
    EXPECT_EQ(runVesk({u"--text"_s, u"hello"_s}).errors,
              u"error: Vesk could not reach its server. Check the internet connection.\n"_s);
}

TEST_F(ServerCommandTest, whatWasHeardIsPrintedAlsoWhenTheCleanUpFails)
{
    answer("cleanup", 503, "");
    const ProgramRun run = runVesk({u"--file"_s, Sample});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output.toStdString(), MatchesRegex("speech [0-9]+ ms: Ever tried.*\n"));
    EXPECT_EQ(run.errors, u"error: The Vesk server answered 503.\n"_s);
}

} // namespace vesk
