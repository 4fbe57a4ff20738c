// What only a mouse reaches: double clicks, the divider, the crosses in search fields.

#include "Dictation/HistoryStore.h"
#include "Windows/ViewsFixture.h"

#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTest>
#include <QToolButton>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

class PointerTest : public ViewsFixture {
protected:
    void remember(const QString &text)
    {
        Dictation entry;
        entry.date = clock.now();
        entry.kind = u"dictation"_s;
        entry.text = text;
        rig.history.append(entry);
    }

    QListView *open(Page page, const QString &list)
    {
        main->present(page);
        settle();
        return named<QListView>(*main, list);
    }

    /// As a mouse does it: the second press is the double click.
    static void doubleClick(QListView *list, int row)
    {
        const QPoint place = list->visualRect(list->model()->index(row, 0)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
    }
};

} // namespace

TEST_F(PointerTest, aDoubleClickCopiesADictationAndRenamesAWord)
{
    remember(u"The meeting is moved."_s);
    remember(u"Dear Mrs Okonkwo"_s);
    rig.settings.change([](Config &config) { config.vocabulary = {u"Vesk"_s}; });
    makeWindows();
    const std::pair<Page, QString> pages[] = {{Page::home, u"Last dictations"_s},
                                              {Page::history, u"History"_s}};
    for (const auto &[page, list] : pages) {
        rig.desktop.board.boards = {};
        doubleClick(open(page, list), 1);
        EXPECT_EQ(rig.desktop.board.text(), u"The meeting is moved.") << list.toStdString();
    }
    doubleClick(open(Page::dictionary, u"Dictionary"_s), 0);
    auto *field = named<QLineEdit>(*main, u"Word"_s);
    QTest::keyClicks(field, u"Vesk!"_s);
    QTest::keyClick(field, Qt::Key_Return);
    settle(); // the list takes the text when the key has been dealt with
    EXPECT_EQ(Config::load().vocabulary, QStringList{u"Vesk!"_s});
}

TEST_F(PointerTest, theCrossInASearchFieldBringsEverythingBack)
{
    remember(u"The meeting is moved."_s);
    rig.settings.change([](Config &config) { config.vocabulary = {u"Vesk"_s}; });
    makeWindows();
    const std::tuple<Page, QString, QString> pages[] = {
        {Page::history, u"Search the history"_s, u"History"_s},
        {Page::dictionary, u"Search the dictionary"_s, u"Dictionary"_s}};
    for (const auto &[page, search, list] : pages) {
        auto *shown = open(page, list);
        auto *field = named<QLineEdit>(*main, search);
        QTest::keyClicks(field, u"zzz"_s);
        ASSERT_EQ(shown->model()->rowCount(), 0);
        settle();
        QTest::mouseClick(field->findChild<QToolButton *>(), Qt::LeftButton);
        EXPECT_EQ(field->text(), QString());
        EXPECT_EQ(shown->model()->rowCount(), 1);
    }
}

TEST_F(PointerTest, theDividerMakesRoomForTheListOrTheTextAndHidesNeither)
{
    remember(u"The meeting is moved."_s);
    makeWindows();
    auto *list = open(Page::history, u"History"_s);
    auto *text = named<QPlainTextEdit>(*main, u"Text"_s);
    const auto *splitter = main->findChild<QSplitter *>();
    QWidget *handle = splitter->handle(1);
    for (const int far : {-2'000, 2'000}) {
        const int before = list->height();
        QTest::mousePress(handle, Qt::LeftButton, {}, handle->rect().center());
        QTest::mouseMove(handle, handle->rect().center() + QPoint(0, far));
        QTest::mouseRelease(handle, Qt::LeftButton, {}, handle->rect().center());
        EXPECT_EQ(list->height() < before, far < 0);
        EXPECT_GT(list->height(), 0);
        EXPECT_GT(text->height(), 0);
    }
}

TEST_F(PointerTest, askedTwiceToClearTheHistoryItAsksOnce)
{
    remember(u"The meeting is moved."_s);
    makeWindows();
    open(Page::history, u"History"_s);
    auto *clear = labelled<QPushButton>(*main, u"Clear All…"_s);
    clear->click();
    clear->click();
    EXPECT_EQ(main->findChildren<QMessageBox *>().size(), 1);
}

} // namespace vesk::test
