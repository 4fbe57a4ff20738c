// The built program, driven as a person drives it: what it does at any start, and the jobs of the command
// line.

#include "CommandLine/Arguments.h"
#include "CommandLine/ProgramRun.h"
#include "Foundation/Config.h"
#include "Foundation/Files.h"
#include "Foundation/Json.h"
#include "Foundation/Log.h"
#include "Server/AccountFile.h"
#include "Support/TemporaryHome.h"
#include "Support/VeskServer.h"

#include <QDir>

#include <gmock/gmock.h>

namespace vesk {

using namespace Qt::StringLiterals;
using testing::MatchesRegex;

namespace {

const QString Sample = QStringLiteral(VESK_TEST_SPEECH_FOLDER "/sample.wav");

using StartTest = HomeTest;

class CommandTest : public HomeTest {
protected:
    CommandTest()
    {
        AccountFile{VeskServer::validToken(), u"someone@example.com"_s}.write();
        configure(u"en-US"_s);
    }

    void configure(const QString &locale)
    {
        Config config;
        config.serverURL = server.baseURL().toString();
        config.vocabulary = {u"EverTried"_s};
        config.locale = locale;
        config.write();
    }

    void answer(const QByteArray &path, int status, const QByteArray &body)
    {
        server.script(path, answering({status, body, {}}));
    }

    VeskServer server;
};

void expectOutput(const ProgramRun &run, const char *form)
{
    EXPECT_EQ(run.status, 0) << run.errors.toStdString();
    EXPECT_THAT(run.output.toStdString(), MatchesRegex(form));
    EXPECT_EQ(run.errors, QString()); // no progress where nobody watches
}

void expectError(const ProgramRun &run, const char *form)
{
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, QString());
    EXPECT_THAT(run.errors.toStdString(), MatchesRegex(form));
    EXPECT_EQ(run.errors.count(u'\n'), 1);
}

} // namespace

TEST_F(CommandTest, eachJobPrintsItsLines)
{
    answer("command", 200, R"({"text": "Shorter.", "unchanged": false, "instruction": "shorter"})");
    answer("dictation", 200, R"({"text": "Clean.", "raw": "um clean", "words": 1})");
    expectOutput(runVesk({u"--text"_s, u"um so hello"_s}), "server [0-9]+ ms: So hello\\.\n");
    expectOutput(runVesk({u"--text"_s, u"make it shorter"_s, u"--selected"_s, u" A long text. "_s}),
                 "server [0-9]+ ms: Shorter\\.\n");
    expectOutput(runVesk({u"--file"_s, Sample, u"--cloud"_s, u"--text"_s, u"ignored"_s}),
                 "heard: um clean\nserver [0-9]+ ms: Clean\\.\n");
    expectOutput(runVesk({u"--file"_s, Sample, u"--raw"_s}), "speech [0-9]+ ms: EverTried .*\n");
    expectOutput(runVesk({u"--file"_s, Sample}),
                 "speech [0-9]+ ms: EverTried .*\nserver [0-9]+ ms: EverTried .*\n");

    answer("command", 200, R"({"text": "whatever", "unchanged": true, "instruction": "x"})");
    expectOutput(runVesk({u"--text"_s, u"make it shorter"_s, u"--selected"_s, u"x"_s}),
                 "server [0-9]+ ms: \\(unchanged\\)\n");
}

TEST_F(CommandTest, theFieldIsDescribedByTheOptions)
{
    runVesk({u"--text"_s, u"hello"_s});
    runVesk({u"--text"_s, u"hello"_s, u"--app"_s, u"Mail"_s, u"--bundle"_s, u"org.mail"_s, u"--window"_s,
             u"Re: you"_s, u"--before"_s, u"Dear "_s});
    const auto requests = server.requests("cleanup");
    ASSERT_EQ(requests.size(), 2U);
    const char *expected[] = {
        R"({"context":{"app":{"bundle_id":"","name":"TextEdit"},"secure":false},"transcript":"hello","vocabulary":["EverTried"]})",
        R"({"context":{"app":{"bundle_id":"org.mail","name":"Mail"},"field":{"text_before":"Dear "},"secure":false,"window_title":"Re: you"},"transcript":"hello","vocabulary":["EverTried"]})",
    };
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(Json::compact(Json::object(requests[i].body)), expected[i]);
    }
}

TEST_F(CommandTest, whatCannotBeDoneIsOneSentenceAndNeverReachesTheServer)
{
    const QString tooLong(6001, u'x');
    expectError(runVesk({u"--text"_s, u"shorter"_s, u"--selected"_s, u"   "_s}),
                "error: Select text before you speak a command\n");
    expectError(runVesk({u"--text"_s, u"shorter"_s, u"--selected"_s, tooLong}),
                "error: The selection is over 6000 characters\n");
    expectError(runVesk({u"--file"_s, at(u"größe 100%.wav")}), "error: There is no file größe 100%.wav\n");
    configure(u"bg-BG"_s);
    expectError(runVesk({u"--file"_s, Sample}), "error: Apple's speech recognition does not support bg-BG\n");
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(CommandTest, whatTheServerSaysIsWhatThePersonReads)
{
    const std::pair<Script, const char *> rows[] = {
        {answering({500, R"({"error": "upstream", "message": "The model is busy.", "raw": "E42"})", {}}),
         "error: The model is busy.\n"},
        {answering(jsonAnswer("<html>A hotel's welcome page</html>")), "error: not valid JSON .*\n"},
        {behaving(Script::Manner::cutOff),
         "error: Vesk could not reach its server. Check the internet connection.\n"},
    };
    for (const auto &[script, sentence] : rows) {
        server.script("cleanup", script);
        expectError(runVesk({u"--text"_s, u"hello"_s}), sentence);
    }
}

TEST_F(CommandTest, whatWasHeardIsPrintedAlsoWhenTheCleanUpFails)
{
    answer("cleanup", 503, "");
    const ProgramRun run = runVesk({u"--file"_s, Sample});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output.toStdString(), MatchesRegex("speech [0-9]+ ms: EverTried .*\n"));
    EXPECT_EQ(run.errors, u"error: The Vesk server answered 503.\n"_s);
}

TEST_F(CommandTest, aFileThatIsCutOffIsHeardAsFarAsItGoesWithAWarning)
{
    const QByteArray whole = Files::read(Sample);
    Files::replace(at(u"half.wav"), whole.first(whole.size() / 2));
    const ProgramRun run = runVesk({u"--file"_s, at(u"half.wav"), u"--raw"_s});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output.toStdString(), testing::ContainsRegex("[Ee]ver failed"));
    EXPECT_THAT(run.errors.toStdString(), MatchesRegex("warning: half\\.wav .*\n"));
}

TEST_F(StartTest, wordsThatMakeNoSensePrintTheUsageTextAndTouchNothing)
{
    const ProgramRun run = runVesk({u"--raw"_s});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, QString::fromUtf8(UsageText));
    EXPECT_EQ(run.errors, QString());
    EXPECT_TRUE(QDir(testHome()).isEmpty());
}

TEST_F(StartTest, theApplicationNeedsADesktop)
{
    const ProgramRun run = runVeskInShell(u"env -u DISPLAY -u WAYLAND_DISPLAY \"$VESK\""_s);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, QString());
    EXPECT_THAT(run.errors.toStdString(), testing::StartsWith("error: Vesk needs a desktop"));
}

TEST_F(StartTest, aFirstRunLeavesCompleteSettingsAndItsLogLinesBehind)
{
    Files::makeFolder(testHome() + u"/Library/Logs");
    const ProgramRun run = runVesk({u"--text"_s, u"um so hello"_s}); // the default server does not exist
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, u"error: Vesk could not reach its server. Check the internet connection.\n"_s);
    EXPECT_EQ(Config::decode(Files::read(Config::file())), Config());
    EXPECT_EQ(modeOf(Config::file()), 0600);
    // The reason, on disk although the process ended at once.
    EXPECT_FALSE(Files::read(Log::file()).isEmpty());
}

TEST_F(StartTest, aHomeThatCannotBeUsedIsOneSentence)
{
    for (const QString &home : {u"/dev/null"_s, u"/proc/self/nowhere"_s}) {
        const ProgramRun run = runVeskInShell(u"HOME=%1 \"$VESK\" --text hello"_s.arg(home));
        EXPECT_EQ(run.status, 1) << home.toStdString();
        EXPECT_EQ(run.errors.count(u'\n'), 1);
        EXPECT_THAT(run.errors.toStdString(),
                    testing::MatchesRegex("error: .*/Library.* cannot be created: .*\n"));
    }
}

TEST_F(StartTest, outputThatTakesNothingIsAnErrorAndNoFileOfThePersonsIsWrittenInto)
{
    const QString command = u"\"$VESK\" --file '%1/silence.wav' --raw "_s.arg(testHome());
    ASSERT_EQ(runVeskInShell(u"sox -n -r 16000 '%1/silence.wav' trim 0 1"_s.arg(testHome())).status, 0);
    for (const QString &redirection : {u">&-"_s, u">/dev/full"_s, u">&- 0<&-"_s}) {
        const ProgramRun run = runVeskInShell(command + redirection);
        EXPECT_EQ(run.status, 1) << redirection.toStdString();
        EXPECT_THAT(run.errors.toStdString(),
                    testing::StartsWith("error: Standard output cannot be written: "));
    }
    EXPECT_EQ(Config::decode(Files::read(Config::file())), Config());
    // A reader that went away: the status of the program, not of the reader.
    const ProgramRun run = runVeskInShell(u"( "_s + command + u"; echo $? >&2 ) | true"_s);
    EXPECT_THAT(run.errors.toStdString(), testing::HasSubstr("Broken pipe\n1\n"));
}

} // namespace vesk
