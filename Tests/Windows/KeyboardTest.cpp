#include "Windows/ViewsFixture.h"

#include <QAbstractScrollArea>
#include <QAccessible>
#include <QClipboard>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QTest>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

class KeyboardTest : public ViewsFixture {
protected:
    KeyboardTest()
    {
        for (const char *text : {"one", "two"}) {
            Dictation entry;
            entry.date = QDateTime::currentDateTimeUtc();
            entry.text = entry.raw = QString::fromLatin1(text);
            rig.history.append(entry);
        }
        rig.settings.change([](Config &config) { config.vocabulary = {u"Vesk"_s}; });
        rig.desktop.recording = Availability::unavailable(u"It is gone."_s);
        rig.desktop.keys.altGr = virtualKeyCode(HotkeyKey::rightOption);
        makeWindows();
    }

    static QString described(const QWidget *widget)
    {
        const QString text = widget->property("text").toString();
        return QString(QLatin1String(widget->metaObject()->className()) + u' '
                       + (widget->accessibleName().isEmpty() ? text : widget->accessibleName()));
    }

    /// What a person who has only the keyboard must be able to reach.
    static QSet<QWidget *> reachable(const QWidget &window)
    {
        QSet<QWidget *> controls;
        for (auto *widget : window.findChildren<QWidget *>()) {
            const bool takesTab = (widget->focusPolicy() & Qt::TabFocus) != 0;
            if (takesTab && widget->isVisible() && widget->isEnabled() && widget->focusProxy() == nullptr) {
                controls.insert(widget);
            }
        }
        return controls;
    }

    /// A page's list with the focus on its first row.
    QListView *open(Page page, const QString &name)
    {
        main->present(page);
        QApplication::setActiveWindow(main.get());
        auto *list = named<QListView>(*main, name);
        list->setFocus();
        list->setCurrentIndex(list->model()->index(0, 0));
        return list;
    }

    static bool isInSight(const QWidget &widget)
    {
        const auto *scrolled = qobject_cast<const QAbstractScrollArea *>(&widget);
        return !(scrolled != nullptr ? scrolled->viewport() : &widget)->visibleRegion().isEmpty();
    }

    /// Everything that has the focus, in turn, until a control has it again.
    static QList<QWidget *> walk(QWidget &window, int key)
    {
        QList<QWidget *> seen;
        while (QWidget *now = window.focusWidget()) {
            if (seen.contains(now)) {
                break;
            }
            EXPECT_TRUE(isInSight(*now)) << described(now).toStdString();
            seen.append(now);
            QTest::keyClick(now, static_cast<Qt::Key>(key));
            settle();
        }
        return seen;
    }

    void expectWhole(QWidget &window, const QString &page)
    {
        QApplication::setActiveWindow(&window);
        settle();
        const QSet<QWidget *> all = reachable(window);
        EXPECT_GT(all.size(), 2) << page.toStdString();
        window.setFocus();
        QTest::keyClick(&window, Qt::Key_Tab);
        for (const auto &[key, way] :
             {std::pair(Qt::Key_Tab, "forwards"), std::pair(Qt::Key_Backtab, "back")}) {
            const QList<QWidget *> walked = walk(window, key);
            for (const QWidget *control : all - QSet(walked.begin(), walked.end())) {
                ADD_FAILURE() << page.toStdString() << ", " << way << ": never reaches "
                              << described(control).toStdString();
            }
            EXPECT_EQ(window.focusWidget(), walked.value(0)) << page.toStdString() << ": a trap " << way;
        }
    }
};

} // namespace

TEST_F(KeyboardTest, tabReachesEveryControlOfEveryPageAndLeavesItAgain)
{
    onEveryPage([this](QWidget &window, const QString &page) { expectWhole(window, page); });
}

TEST_F(KeyboardTest, aRowThatAnAssistiveProgramSelectsIsTheOneThatIsShown)
{
    const auto select = [](QListView *list, int number) {
        QAccessibleInterface *row = QAccessible::queryAccessibleInterface(list)->child(number);
        row->actionInterface()->doAction(row->actionInterface()->actionNames().value(0));
    };
    main->present(Page::home);
    settle();
    select(named<QListView>(*main, u"Pages"_s), 1);
    EXPECT_EQ(main->page(), Page::history);
    settle();
    select(named<QListView>(*main, u"History"_s), 1);
    EXPECT_EQ(named<QPlainTextEdit>(*main, u"Text"_s)->toPlainText(), u"one");
}

TEST_F(KeyboardTest, dictationsAreCopiedFoundAndDeletedByKeys)
{
    QTest::keyClick(open(Page::home, u"Last dictations"_s), Qt::Key_Return);
    EXPECT_EQ(rig.desktop.board.text(), u"two");

    QListView *history = open(Page::history, u"History"_s);
    QTest::keySequence(history, QKeySequence::Find);
    EXPECT_EQ(main->focusWidget(), named<QLineEdit>(*main, u"Search the history"_s));
    history->setFocus();
    QTest::keyClick(history, Qt::Key_Delete);
    ASSERT_EQ(rig.history.entries().size(), 1);
    EXPECT_EQ(rig.history.entries().first().text, u"one");
    QTest::keyClick(history, Qt::Key_Return);
    EXPECT_EQ(rig.desktop.board.text(), u"one") << "the next one is chosen";
}

TEST_F(KeyboardTest, wordsAreRenamedRemovedBroughtBackAndPastedByKeys)
{
    QListView *words = open(Page::dictionary, u"Dictionary"_s);
    QTest::keySequence(words, QKeySequence::Find);
    EXPECT_EQ(main->focusWidget(), named<QLineEdit>(*main, u"Search the dictionary"_s));
    words->setFocus();
    QTest::keyClick(words, Qt::Key_F2);
    QTest::keyClicks(named<QLineEdit>(*words, u"Word"_s), u"Qt"_s);
    QTest::keyClick(named<QLineEdit>(*words, u"Word"_s), Qt::Key_Return);
    settle(); // the field goes a moment later
    EXPECT_EQ(Config::load().vocabulary.join(u'|'), u"Qt");
    words->setFocus();
    QTest::keyClick(words, Qt::Key_Delete);
    EXPECT_EQ(Config::load().vocabulary.join(u'|'), QString());
    QTest::keySequence(words, QKeySequence::Undo);
    QTest::keySequence(words, QKeySequence::Undo);
    EXPECT_EQ(Config::load().vocabulary.join(u'|'), u"Vesk");
    QTest::keySequence(words, QKeySequence::Redo);
    EXPECT_EQ(Config::load().vocabulary.join(u'|'), u"Qt");
    QGuiApplication::clipboard()->setText(u"QCoro\nrsync"_s);
    QTest::keySequence(words, QKeySequence::Paste);
    EXPECT_EQ(Config::load().vocabulary.join(u'|'), u"Qt|QCoro|rsync");
}

} // namespace vesk::test
