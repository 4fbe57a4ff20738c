#include "Foundation/Files.h"

#include "Foundation/Storage.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vesk {

namespace {

constexpr int Private = 0600;

class FilesTest : public testing::Test {
protected:
    void SetUp() override { emptyTestHome(); }

    static QString at(QStringView name) { return testHome() + u'/' + name; }

    static void put(const QString &path, const QByteArray &content, int mode = Private)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), static_cast<mode_t>(mode)), 0);
    }

    static QStringList filesInHome() { return QDir(testHome()).entryList(QDir::Files | QDir::Hidden); }
};

using StorageTest = FilesTest;

/// Runs the block in a child process that may write no file beyond `limit` bytes: what a full disk does to a
/// write, without a disk to fill. True when the block ended normally.
bool withFileSizeLimit(rlim_t limit, const std::function<void()> &block)
{
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit most = {limit, limit};
        ::setrlimit(RLIMIT_FSIZE, &most);
        block();
        ::_exit(0);
    }
    int status = -1;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

TEST_F(FilesTest, replacingMakesAWorldReadableFilePrivate)
{
    put(at(u"a.json"), "old", 0644);
    Files::replace(at(u"a.json"), "new");
    EXPECT_EQ(Files::read(at(u"a.json")), "new");
    EXPECT_EQ(modeOf(at(u"a.json")), Private);
    EXPECT_EQ(filesInHome(), QStringList{QStringLiteral("a.json")});
}

TEST_F(FilesTest, aFullDiskLeavesTheOldContentWholeAndNothingElseBehind)
{
    put(at(u"a.json"), "everything the person had");
    EXPECT_TRUE(withFileSizeLimit(64, [] {
        try {
            Files::replace(at(u"a.json"), QByteArray(100'000, 'x'));
            ::_exit(1);
        } catch (const FileError &error) {
            if (error.errorNumber() != EFBIG || !error.errorDescription().contains(u"a.json")) {
                ::_exit(2);
            }
        }
    }));
    EXPECT_EQ(Files::read(at(u"a.json")), "everything the person had");
    EXPECT_EQ(filesInHome(), QStringList{QStringLiteral("a.json")});
}

TEST_F(FilesTest, linksAreWrittenThrough)
{
    QDir(testHome()).mkdir(QStringLiteral("dotfiles"));
    struct Row {
        const char *what;
        QString target; // of the link, as it is stored in it
        bool exists;
    };
    const Row rows[] = {
        {"relative", QStringLiteral("dotfiles/one.json"), true},
        {"absolute", at(u"dotfiles/two.json"), true},
        {"dangling", QStringLiteral("dotfiles/three.json"), false},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        const QString link = at(QString::fromLatin1(row.what));
        ASSERT_TRUE(QFile::link(row.target, link));
        const QString target = QDir(testHome()).absoluteFilePath(row.target);
        if (row.exists) {
            put(target, "old");
        }
        Files::replace(link, "new");
        EXPECT_TRUE(QFileInfo(link).isSymLink());
        EXPECT_EQ(Files::read(target), "new");
        EXPECT_EQ(modeOf(target), Private);
    }
}

TEST_F(FilesTest, whatIsNoRegularFileIsRefusedAtOnce)
{
    QDir(testHome()).mkdir(QStringLiteral("folder"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(at(u"pipe")).constData(), Private), 0);
    ASSERT_TRUE(QFile::link(QStringLiteral("loop"), at(u"loop")));
    for (const QStringView name : {u"folder", u"pipe", u"loop", u"missing"}) {
        SCOPED_TRACE(name.toString().toStdString());
        EXPECT_THROW(Files::read(at(name)), FileError);
    }
}

TEST_F(StorageTest, appendingCreatesFolderAndFileAndKeepsThemPrivate)
{
    const QString path = at(u"Library/Deep/history.jsonl");
    Storage::append("first\n", path);
    EXPECT_EQ(modeOf(path), Private);
    Storage::append("second\n", path);
    EXPECT_EQ(Files::read(path), "first\nsecond\n");
}

TEST_F(StorageTest, failuresAreSilentAndLoseNothing)
{
    put(at(u"blocked"), "a file where a folder should be");
    Storage::write("x", at(u"blocked/a.json"));
    Storage::append("x", at(u"blocked/a.json"));
    EXPECT_EQ(Files::read(at(u"blocked")), "a file where a folder should be");

    // Four bytes of the line still fit, and must not stay for the next one to be joined to.
    put(at(u"history.jsonl"), QByteArray(60, 'h'));
    EXPECT_TRUE(withFileSizeLimit(64, [] { Storage::append("one more line\n", at(u"history.jsonl")); }));
    EXPECT_EQ(Files::read(at(u"history.jsonl")), QByteArray(60, 'h'));
}

} // namespace vesk
