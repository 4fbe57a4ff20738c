#include "Foundation/Log.h"

#include "Foundation/Files.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <cstdlib>
#include <gtest/gtest.h>

namespace vesk {

namespace {

class LogTest : public HomeTest {
protected:
    static QList<QByteArray> lines()
    {
        QList<QByteArray> all = logText().split('\n');
        EXPECT_EQ(all.takeLast(), "");
        return all;
    }

    static void makeFolder() { Files::makeFolder(testHome() + u"/Library/Logs"); }
};

} // namespace

TEST_F(LogTest, aLineIsAUtcStampABlankAndTheMessageAsItIs)
{
    makeFolder();
    Log::write(QStringLiteral("dictation how=mac chars=3>4 é"));
    const QList<QByteArray> all = lines();
    ASSERT_EQ(all.size(), 1);
    static const QRegularExpression form(
        QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ dictation how=mac chars=3>4 é$"));
    EXPECT_TRUE(form.match(QString::fromUtf8(all[0])).hasMatch()) << all[0].constData();
    EXPECT_EQ(modeOf(Log::file()), 0600);
}

TEST_F(LogTest, withoutItsFolderNothingIsCreatedAndEveryLineLooksAfresh)
{
    Log::write(QStringLiteral("lost"));
    Log::flush();
    EXPECT_EQ(modeOf(Log::file()), -1);
    makeFolder();
    for (int file = 0; file < 2; ++file) {
        Log::write(QStringLiteral("kept"));
        EXPECT_EQ(lines().size(), 1);
        ASSERT_TRUE(QFile::rename(Log::file(), Log::file() + QString::number(file)));
    }
}

TEST_F(LogTest, linesThatWaitWhenTheProcessEndsAreHandledBeforeWhatTheyNeedGoes)
{
    GTEST_FLAG_SET(death_test_style,
                   "threadsafe"); // a program of its own: a forked one has no queue's thread
    const auto end = [] {
        QDir().rmdir(testHome()); // exit() leaves it to nobody
        for (int line = 0; line < 2000; ++line) {
            Log::write(QStringLiteral("line"));
        }
        std::exit(0);
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(0), "");
}

} // namespace vesk
