// Whether every text has room in a language whose words are longer, at the smallest size that a window takes.
// The same cases, and those of the keyboard, run at 300 % as well (see CMakeLists.txt).

#include "Windows/ViewsFixture.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QTranslator>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

/// Every word two fifths longer; places for values stay.
QString lengthened(const QString &text)
{
    QString longer;
    QString word;
    const auto endWord = [&] {
        const qsizetype further = (word.size() * 2 + 4) / 5;
        longer += word + word.left(further).toLower();
        word.clear();
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPlace = i > 0 && text.at(i - 1) == u'%';
        if (text.at(i).isLetter() && !isPlace) {
            word += text.at(i);
            continue;
        }
        endWord();
        longer += text.at(i);
    }
    endWord();
    return longer;
}

class LongWords final : public QTranslator {
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *source, const char *, int) const override
    {
        return lengthened(QString::fromUtf8(source));
    }
};

class ClippingTest : public ViewsFixture, public testing::WithParamInterface<Qt::LayoutDirection> {
protected:
    ClippingTest()
    {
        QApplication::installTranslator(&m_longWords);
        QApplication::setLayoutDirection(GetParam());
    }
    ~ClippingTest() override
    {
        QApplication::setLayoutDirection(Qt::LeftToRight);
        QApplication::removeTranslator(&m_longWords);
    }

    static void expectRoom(QWidget &window, const QString &page)
    {
        window.resize(window.minimumSizeHint());
        settle();
        window.resize(window.minimumSizeHint()); // a text in more lines may have asked for more
        settle();
        int texts = 0;
        for (const auto *widget : window.findChildren<QWidget *>()) {
            const QString missing = widget->isVisible() ? whatIsMissing(*widget, texts) : QString();
            EXPECT_TRUE(missing.isEmpty())
                << page.toStdString() << ", " << widget->metaObject()->className() << " \""
                << widget->property("text").toString().toStdString() << "\": " << missing.toStdString();
        }
        EXPECT_GT(texts, 3) << page.toStdString();
        EXPECT_LE(window.minimumSizeHint().width(), 1024) << page.toStdString();
        EXPECT_LE(window.minimumSizeHint().height(), 700) << page.toStdString();
    }

private:
    static QString tooSmall(const QWidget &widget, const QSize &wanted)
    {
        const bool isEnough = widget.width() >= wanted.width() && widget.height() >= wanted.height();
        return isEnough ? QString()
                        : u"%1×%2 instead of %3×%4"_s.arg(widget.width())
                              .arg(widget.height())
                              .arg(wanted.width())
                              .arg(wanted.height());
    }

    /// What a control lacks to show its text; counts the texts that were looked at.
    static QString whatIsMissing(const QWidget &widget, int &texts)
    {
        if (const auto *label = qobject_cast<const QLabel *>(&widget); label && !label->text().isEmpty()) {
            ++texts;
            return missingOfLabel(*label) + outside(widget);
        }
        const auto *button = qobject_cast<const QAbstractButton *>(&widget);
        if (const auto *box = qobject_cast<const QComboBox *>(&widget);
            box != nullptr || (button != nullptr && !button->text().isEmpty())) {
            ++texts;
            return tooSmall(widget, widget.sizeHint()) + outside(widget);
        }
        if (const auto *edit = qobject_cast<const QPlainTextEdit *>(&widget)) {
            return tooSmall(*edit->viewport(),
                            wrapped(*edit, edit->placeholderText(), edit->viewport()->width()));
        }
        if (const auto *list = qobject_cast<const QListWidget *>(&widget)) {
            return list->viewport()->width() >= list->sizeHintForColumn(0) ? QString() : u"a narrow list"_s;
        }
        return {};
    }

    static QString missingOfLabel(const QLabel &label)
    {
        if (!label.wordWrap()) {
            return tooSmall(label, label.sizeHint());
        }
        return tooSmall(
            label,
            {wrapped(label, label.text(), label.width()).width(), label.heightForWidth(label.width())});
    }

    static QSize wrapped(const QWidget &widget, const QString &text, int width)
    {
        return widget.fontMetrics()
            .boundingRect(QRect(0, 0, width, QWIDGETSIZE_MAX), Qt::TextWordWrap, text)
            .size();
    }

    /// A part that no scrolling downwards brings into sight.
    static QString outside(const QWidget &widget)
    {
        for (const QWidget *above = widget.parentWidget(); above != nullptr; above = above->parentWidget()) {
            const QRect place(widget.mapTo(above, QPoint()), widget.size());
            const auto *scroll = qobject_cast<const QScrollArea *>(above->parentWidget());
            const bool isPage = scroll != nullptr && scroll->viewport() == above;
            if (place.left() < 0 || place.right() >= above->width()) {
                return u"beyond the side of %1"_s.arg(QLatin1String(above->metaObject()->className()));
            }
            if (!isPage && (place.top() < 0 || place.bottom() >= above->height())) {
                return u"beyond the end of %1"_s.arg(QLatin1String(above->metaObject()->className()));
            }
            if (isPage || above->isWindow()) {
                return {};
            }
        }
        return {};
    }

    LongWords m_longWords;
};

} // namespace

TEST_P(ClippingTest, everyTextOfEveryPageHasRoom)
{
    makeWindows();
    onEveryPage([this](QWidget &window, const QString &page) { expectRoom(window, page); });
}

TEST_P(ClippingTest, everyTextHasRoomWhereThingsAreMissing)
{
    const QString sentence = lengthened(
        u"Vesk cannot see the field you are typing in, because this session has no accessibility bus."_s);
    rig.desktop.recording = Availability::unavailable(sentence);
    rig.desktop.programs.available = Availability::unavailable(sentence);
    rig.tray = Availability::unavailable(sentence);
    rig.areNotificationsOff = true;
    rig.desktop.keys.altGr = virtualKeyCode(HotkeyKey::rightOption);
    QFile file(Config::file());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{");
    file.close();
    rig.settings.reload();
    rig.account.startSignIn(u"nobody"_s); // is refused, with two ways on
    makeWindows();
    for (const Page page : {Page::home, Page::history, Page::dictionary, Page::settings}) {
        main->present(page);
        expectRoom(*main, u"page %1, with problems"_s.arg(static_cast<int>(page)));
    }
    setup->present();
    expectRoom(*setup, u"set-up, with problems"_s);
}

INSTANTIATE_TEST_SUITE_P(Directions, ClippingTest, testing::Values(Qt::LeftToRight, Qt::RightToLeft),
                         [](const auto &direction) {
                             return direction.param == Qt::LeftToRight ? "leftToRight" : "rightToLeft";
                         });

} // namespace vesk::test
