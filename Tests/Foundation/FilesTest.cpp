#include "Foundation/Files.h"

#include "Foundation/Storage.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace vesk {

namespace {

constexpr int Private = 0600;

class FilesTest : public HomeTest {
protected:
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
    try {
        const FullDisk disk(64);
        Files::replace(at(u"a.json"), QByteArray(100'000, 'x'));
        ADD_FAILURE() << "the disk was not full";
    } catch (const FileError &error) {
        EXPECT_EQ(error.errorNumber(), EFBIG);
        EXPECT_TRUE(error.errorDescription().contains(u"a.json"));
    }
    EXPECT_EQ(Files::read(at(u"a.json")), "everything the person had");
    EXPECT_EQ(filesInHome(), QStringList{QStringLiteral("a.json")});
}

TEST_F(FilesTest, linksAreWrittenThrough)
{
    QDir(testHome()).mkdir(QStringLiteral("dotfiles"));
    for (const QString &stored : {QStringLiteral("dotfiles/relative"), at(u"dotfiles/absolute"),
                                  QStringLiteral("dotfiles/dangling")}) {
        SCOPED_TRACE(stored.toStdString());
        const QString link = at(stored.section(u'/', -1));
        ASSERT_TRUE(QFile::link(stored, link));
        const QString target = QDir(testHome()).absoluteFilePath(stored);
        if (!stored.endsWith(u"dangling")) {
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
    {
        const FullDisk disk(64);
        Storage::append("one more line\n", at(u"history.jsonl"));
    }
    EXPECT_EQ(Files::read(at(u"history.jsonl")), QByteArray(60, 'h'));
}

} // namespace vesk
