#include "CommandLine/Arguments.h"
#include "CommandLine/ProgramRun.h"
#include "Foundation/Config.h"
#include "Foundation/Files.h"
#include "Foundation/Log.h"
#include "Support/TemporaryHome.h"

#include <QDir>

#include <gmock/gmock.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

using StartTest = HomeTest;

const QStringList CleanUp = {u"--text"_s, u"um so hello"_s};

} // namespace

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
    const ProgramRun run = runVesk({}, {{u"DISPLAY"_s, {}}, {u"WAYLAND_DISPLAY"_s, {}}});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, QString());
    EXPECT_THAT(run.errors.toStdString(), testing::StartsWith("error: Vesk needs a desktop"));
}

TEST_F(StartTest, aFirstRunLeavesCompleteSettingsAndItsLogLinesBehind)
{
    Files::makeFolder(testHome() + u"/Library/Logs");
    const ProgramRun run = runVesk(CleanUp); // the default server does not exist
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, u"error: Vesk could not reach its server. Check the internet connection.\n"_s);
    EXPECT_EQ(Config::decode(Files::read(Config::file())), Config());
    EXPECT_EQ(modeOf(Config::file()), 0600);
    EXPECT_FALSE(
        Files::read(Log::file()).isEmpty()); // the reason, on disk although the process ended at once
}

TEST_F(StartTest, settingsThatCannotBeReadNameTheKeyAndStayAsTheyAre)
{
    Files::makeFolder(Config::directory());
    const QByteArray broken = R"({"cleanup": "yes"})";
    Files::replace(Config::file(), broken);
    const ProgramRun run = runVesk(CleanUp);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors,
              u"error: config.json cannot be read: \"cleanup\" must be true or false, not a text\n"_s);
    EXPECT_EQ(Files::read(Config::file()), broken);
}

TEST_F(StartTest, aHomeThatCannotBeUsedIsOneSentence)
{
    Files::replace(testHome() + u"/file", "not a folder");
    for (const QString &home : {QString(testHome() + u"/file"), u"/dev/null"_s, u"/proc/self/nowhere"_s}) {
        const ProgramRun run = runVesk(CleanUp, {{u"HOME"_s, home}});
        EXPECT_EQ(run.status, 1) << home.toStdString();
        EXPECT_EQ(run.errorLines().size(), 1) << run.errors.toStdString();
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
