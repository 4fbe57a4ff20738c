#include "CommandLine/ProgramRun.h"
#include "Notes/NoteFixtures.h"
#include "Support/TemporaryHome.h"

#include <QDir>

#include <gmock/gmock.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

class ServerProcessTest : public HomeTest {
protected:
    static ProgramRun runWith(const QByteArray &input, const QString &command = u"\"$VESK\" --mcp"_s)
    {
        Files::replace(testHome() + u"/input", input);
        return runVeskInShell(u"cd / && "_s + command + u" < '" + testHome() + u"/input'");
    }

    static QString announcement() { return u"vesk mcp: serving " + Note::folder() + u'\n'; }
};

const QByteArray Ping = R"({"id":1,"method":"ping"})";
const QString Pong = uR"({"jsonrpc":"2.0","id":1,"result":{}})"_s;

} // namespace

TEST_F(ServerProcessTest, anEmptyEnvironmentIsEnough)
{
    const ProgramRun run =
        runWith(Ping + "\r\n\n \t\n" + Ping, u"env -i HOME='%1' PATH=/bin \"$VESK\" --mcp"_s.arg(testHome()));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, Pong + u'\n' + Pong + u'\n'); // the last line has no line feed
    EXPECT_EQ(run.errors, announcement());
    EXPECT_EQ(QDir(testHome()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{u"input"_s});
}

TEST_F(ServerProcessTest, withoutHomeTheAccountsFolderIsServed)
{
    const ProgramRun run = runWith(Ping, u"env -u HOME -u LANG \"$VESK\" --mcp"_s);
    EXPECT_EQ(run.output, Pong + u'\n');
    EXPECT_THAT(run.errors.toStdString(), testing::MatchesRegex("vesk mcp: serving /.*/Vesk/Notes\n"));
}

TEST_F(ServerProcessTest, anOutputThatTakesNoMoreEndsTheServer)
{
    Files::replace(testHome() + u"/input", QByteArray(Ping + '\n'));
    const QString command = u"\"$VESK\" --mcp < '%1/input' "_s.arg(testHome());
    for (const QString &redirection : {u">&-"_s, u">/dev/full"_s}) {
        const ProgramRun run = runVeskInShell(command + redirection);
        EXPECT_EQ(run.status, 1) << redirection.toStdString();
        EXPECT_THAT(run.errors.toStdString(), testing::HasSubstr("vesk mcp: the output cannot be written: "));
    }
    // The input stays open: only the closed output can end it.
    const ProgramRun run = runVeskInShell(
        u"( yes '%1' | ( \"$VESK\" --mcp; echo $? >&2 ) | head -n 1 )"_s.arg(QString::fromUtf8(Ping)));
    EXPECT_EQ(run.output, Pong + u'\n');
    EXPECT_THAT(run.errors.toStdString(), testing::EndsWith("Broken pipe\n1\n"));
}

TEST_F(ServerProcessTest, anInputThatCannotBeReadEndsTheServerWithASentence)
{
    const ProgramRun run = runVeskInShell(u"\"$VESK\" --mcp < /"_s);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, announcement() + u"vesk mcp: the input cannot be read: Is a directory\n");
}

TEST_F(ServerProcessTest, aTerminationSignalThatWasIgnoredEndsItAllTheSame)
{
    // Its first answer says that it has begun to listen.
    const ProgramRun run =
        runVeskInShell(u"cd '%1' && mkfifo in out && trap '' TERM && { \"$VESK\" --mcp < in > out & } && "
                       u"exec 3> in 4< out && "
                       "echo '%2' >&3 && read -r answer <&4 && kill $! && wait $!; echo $? >&2"_s.arg(
                           testHome(), QString::fromUtf8(Ping)));
    EXPECT_THAT(run.errors.toStdString(), testing::EndsWith("143\n"));
}

} // namespace vesk
