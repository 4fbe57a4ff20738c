#include "Windows/HistoryModel.h"

#include "Dictation/HistoryStore.h"
#include "Support/TemporaryHome.h"

#include <QAbstractItemModelTester>

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

Dictation dictation(const QString &text, const QDateTime &date = QDateTime::currentDateTimeUtc())
{
    return {QUuid::createUuid(), date, u"dictation"_s, u"Thunderbird"_s, u"um "_s + text, text, 1.5};
}

class HistoryModelTest : public HomeTest {
protected:
    HistoryModelTest()
    {
        QObject::connect(&model, &QAbstractItemModel::modelReset, [this] { ++resets; });
    }

    QString shown() const
    {
        QStringList texts;
        for (int row = 0; row < filter.rowCount(); ++row) {
            texts.append(filter.index(row, 0).data().toString());
        }
        return texts.join(u'|');
    }

    HistoryStore store;
    HistoryModel model{store};
    HistoryFilter filter{model};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    int resets = 0;
};

} // namespace

TEST_F(HistoryModelTest, rowsFollowTheStoreWithoutStartingAfresh)
{
    for (const QString &text : {u"one"_s, u"two"_s, u"three"_s}) {
        store.append(dictation(text));
    }
    const QPersistentModelIndex two = model.index(1);
    store.append(dictation(u"four"_s));
    store.remove(store.entries().at(1).id);
    EXPECT_EQ(shown(), u"four|two|one");
    EXPECT_EQ(two.row(), 1) << "what was selected is still selected";
    store.remove(store.entries().at(1).id);
    EXPECT_FALSE(two.isValid());
    const QPersistentModelIndex one = model.index(1);
    store.remove(store.entries().first().id);
    EXPECT_EQ(one.row(), 0) << "of two rows, the one that stays";
    EXPECT_EQ(shown(), u"one");
    store.remove(store.entries().last().id);
    EXPECT_EQ(shown(), QString());
    EXPECT_EQ(resets, 0);
}

TEST_F(HistoryModelTest, atTheCapTheOldestRowGoesAsTheNewestComes)
{
    for (int i = 0; i < HistoryStore::Limit + 2; ++i) {
        store.append(dictation(QString::number(i)));
    }
    EXPECT_EQ(model.rowCount(), HistoryStore::Limit);
    EXPECT_EQ(model.entry(0).text, u"1001");
    EXPECT_EQ(model.entry(999).text, u"2");
    EXPECT_EQ(resets, 0);
    store.clear();
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(HistoryModelTest, aSearchFindsEveryWordWhereverItStands)
{
    store.append(dictation(u"Dear Mrs Okonkwo"_s));
    store.append(dictation(u"The meeting is\nmoved"_s));
    const struct {
        QString search;
        QString found;
    } rows[] = {
        {u"okonkwo DEAR"_s, u"Dear Mrs Okonkwo"_s},
        {u"um meeting"_s, u"The meeting is moved"_s}, // as it was heard
        {u"thunder"_s, u"The meeting is moved|Dear Mrs Okonkwo"_s},
        {u" "_s, u"The meeting is moved|Dear Mrs Okonkwo"_s},
        {u"okonkwo moved"_s, {}},
    };
    for (const auto &row : rows) {
        filter.setSearch(row.search);
        EXPECT_EQ(shown(), row.found) << row.search.toStdString();
    }
    filter.setSearch(u"okonkwo"_s);
    EXPECT_EQ(filter.entry(filter.index(0, 0)).text, u"Dear Mrs Okonkwo");
}

TEST_F(HistoryModelTest, theFirstFewStayTheFirstFewAsNewOnesCome)
{
    filter.setLimit(2);
    for (const QString &text : {u"one"_s, u"two"_s, u"three"_s}) {
        store.append(dictation(text));
    }
    EXPECT_EQ(shown(), u"three|two");
    store.remove(store.entries().first().id);
    EXPECT_EQ(shown(), u"two|one");
}

TEST_F(HistoryModelTest, todayIsTheDayOfThePersonNotOfTheClockInLondon)
{
    const QDate day(2026, 7, 1);
    const auto at = [](const QDate &date, const QTime &time) {
        return QDateTime(date, time, Qt::LocalTime).toUTC();
    };
    store.append(dictation(u"late yesterday"_s, at(day.addDays(-1), {23, 59, 59})));
    store.append(dictation(u"two  words"_s, at(day, {0, 0})));
    store.append(dictation(u"one"_s, at(day, {23, 59, 59})));

    EXPECT_EQ(model.countOf(day), (HistoryModel::Count{2, 3}));
    EXPECT_TRUE(HistoryModel::caption(store.entries().last(), day).startsWith(u"Yesterday "));
}

} // namespace vesk
