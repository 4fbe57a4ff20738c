#include "Dictation/HistoryStore.h"

#include "Foundation/Files.h"
#include "Support/Await.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

using HistoryStoreTest = HomeTest;

Dictation numbered(int number)
{
    return {QUuid::createUuid(),
            QDateTime::fromMSecsSinceEpoch(1'700'000'000'250, Qt::UTC),
            u"dictation"_s,
            u"Editor"_s,
            u"heard"_s,
            QString::number(number),
            1.5};
}

QList<QByteArray> lines(HistoryStore &store)
{
    store.flush();
    QList<QByteArray> all = Files::read(HistoryStore::file()).split('\n');
    EXPECT_EQ(all.takeLast(), QByteArray());
    return all;
}

} // namespace

TEST_F(HistoryStoreTest, keepsAThousandTheNewestFirstInMemoryAndLastInTheFile)
{
    HistoryStore store;
    for (int i = 1; i <= 1000; ++i) {
        store.append(numbered(i));
    }
    EXPECT_EQ(lines(store).size(), 1000);
    store.append(numbered(1001));
    ASSERT_EQ(lines(store).size(), 1000);
    EXPECT_EQ(store.entries().first().text, u"1001"_s);
    EXPECT_EQ(store.entries().last().text, u"2"_s);
    EXPECT_EQ(HistoryStore().entries(), store.entries());
    store.remove(store.entries().at(1).id);
    store.remove(QUuid::createUuid());
    EXPECT_EQ(lines(store).size(), 999);
    EXPECT_EQ(store.entries().at(1).text, u"999"_s);
    EXPECT_EQ(HistoryStore().entries(), store.entries());
    EXPECT_EQ(modeOf(HistoryStore::file()), 0600);
    store.clear();
    store.flush();
    EXPECT_FALSE(QFile::exists(HistoryStore::file()));
    store.append(numbered(7));
    EXPECT_EQ(lines(store).size(), 1);
}

TEST_F(HistoryStoreTest, whatCannotBeForgottenComesBackAndIsSaid)
{
    HistoryStore store;
    store.append(numbered(1));
    store.append(numbered(2));
    store.flush();
    QStringList reasons;
    QObject::connect(&store, &HistoryStore::couldNotForget, &store,
                     [&reasons](const QString &reason) { reasons.append(reason); });
    {
        const FullDisk disk(0);
        store.remove(store.entries().first().id);
        store.flush();
    }
    EXPECT_TRUE(eventually([&] { return reasons.size() == 1; }));
    EXPECT_EQ(store.entries().size(), 2);

    store.clear();
    store.flush();
    ASSERT_TRUE(QDir().mkpath(HistoryStore::file() + u"/what cannot be deleted as a file"));
    store.clear();
    EXPECT_TRUE(eventually([&] { return reasons.size() == 2; }));
    for (const QString &reason : reasons) {
        EXPECT_TRUE(reason.contains(u"history.jsonl cannot be written: "_s)) << qPrintable(reason);
    }
}

TEST_F(HistoryStoreTest, aDamagedLineCostsItsOwnEntryOnly)
{
    HistoryStore store;
    store.append(numbered(1));
    const QByteArray good = lines(store).first();
    const QList<QByteArray> damaged = {"{",
                                       "[]",
                                       good.left(40),
                                       QByteArray(good).replace("\"seconds\"", "\"secs\""),
                                       QByteArray(good).replace("\"Editor\"", "7"),
                                       "\xff\xfe"};
    Files::replace(HistoryStore::file(), QByteArray(damaged.join('\n') + "\n\n" + good + '\n'));
    EXPECT_EQ(HistoryStore().entries(), store.entries());
}

TEST_F(HistoryStoreTest, aLastLineWithoutItsEndDoesNotTakeTheNextOneWithIt)
{
    for (const char *rest : {"", "\n{\"id\": \"half a li"}) {
        HistoryStore store;
        store.append(numbered(1));
        Files::replace(HistoryStore::file(), QByteArray(lines(store).join('\n') + rest));
        const qsizetype before = HistoryStore().entries().size();
        store.append(numbered(2));
        store.flush();
        EXPECT_EQ(HistoryStore().entries().size(), before + 1) << rest;
    }
}

TEST_F(HistoryStoreTest, aFileThatCouldNotBeReadIsAddedToAndNotWrittenOver)
{
    HistoryStore before;
    before.append(numbered(1));
    EXPECT_EQ(lines(before).size(), 1);
    rlimit limit = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none = {0, limit.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    HistoryStore blind;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    ASSERT_EQ(blind.entries().size(), 0);
    blind.append(numbered(2));
    blind.remove(blind.entries().first().id);
    EXPECT_EQ(lines(blind).size(), 2);
    EXPECT_EQ(HistoryStore().entries().last(), before.entries().last());
}

} // namespace vesk
