// Whether every text has room in a language whose words are longer, at the smallest size that a window takes.
// The same cases, and those of the keyboard, run at 300 % as well (see CMakeLists.txt).

#include "Foundation/Files.h"
#include "Windows/ViewsFixture.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QScrollArea>
#include <QTranslator>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

/// Every word two fifths longer; places for values stay.
QString lengthened(const QString &text)
{
    static const QRegularExpression words(u"(?<!%)\\p{L}+"_s);
    QString longer;
    qsizetype end = 0;
    for (const QRegularExpressionMatch &match : words.globalMatch(text)) {
        const QString word = match.captured();
        longer += text.mid(end, match.capturedEnd() - end) + word.left((word.size() * 2 + 4) / 5).toLower();
        end = match.capturedEnd();
    }
    return QString(longer + text.mid(end));
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
            const std::optional<QSize> needed = widget->isVisible() ? neededSize(*widget) : std::nullopt;
            if (needed) {
                SCOPED_TRACE(QString(page + u", " + QLatin1String(widget->metaObject()->className()) + u' '
                                     + widget->property("text").toString())
                                 .toStdString());
                EXPECT_GE(widget->width(), needed->width());
                EXPECT_GE(widget->height(), needed->height());
                EXPECT_TRUE(isInSight(*widget));
                ++texts;
            }
        }
        EXPECT_GT(texts, 3) << page.toStdString();
        EXPECT_LE(window.minimumSizeHint().width(), 1024) << page.toStdString();
        EXPECT_LE(window.minimumSizeHint().height(), 700) << page.toStdString();
    }

private:
    /// What a control needs to show its text; nothing for one without.
    static std::optional<QSize> neededSize(const QWidget &widget)
    {
        if (const auto *label = qobject_cast<const QLabel *>(&widget); label && !label->text().isEmpty()) {
            const int width = label->width();
            return label->wordWrap()
                ? QSize(wrapped(*label, label->text(), width).width(), label->heightForWidth(width))
                : label->sizeHint();
        }
        const auto *button = qobject_cast<const QAbstractButton *>(&widget);
        if (qobject_cast<const QComboBox *>(&widget) || (button && !button->text().isEmpty())) {
            return widget.sizeHint();
        }
        if (const auto *edit = qobject_cast<const QPlainTextEdit *>(&widget)) {
            return wrapped(*edit, edit->placeholderText(), edit->viewport()->width()) + edit->size()
                - edit->viewport()->size();
        }
        if (const auto *list = qobject_cast<const QListWidget *>(&widget)) {
            return QSize(list->sizeHintForColumn(0) + list->width() - list->viewport()->width(), 0);
        }
        return std::nullopt;
    }

    static QSize wrapped(const QWidget &widget, const QString &text, int width)
    {
        return widget.fontMetrics()
            .boundingRect(QRect(0, 0, width, QWIDGETSIZE_MAX), Qt::TextWordWrap, text)
            .size();
    }

    /// Whether scrolling downwards, where that is possible, brings the whole of it into sight.
    static bool isInSight(const QWidget &widget)
    {
        for (const QWidget *above = widget.parentWidget(); above != nullptr; above = above->parentWidget()) {
            const QRect place(widget.mapTo(above, QPoint()), widget.size());
            const auto *scroll = qobject_cast<const QScrollArea *>(above->parentWidget());
            const bool isPage = scroll != nullptr && scroll->viewport() == above;
            if (place.left() < 0 || place.right() >= above->width()
                || (!isPage && (place.top() < 0 || place.bottom() >= above->height()))) {
                return false;
            }
            if (isPage || above->isWindow()) {
                break;
            }
        }
        return true;
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
    Files::replace(Config::file(), "{");
    rig.settings.reload();
    rig.account.startSignIn(u"nobody"_s); // is refused, with two ways on
    makeWindows();
    onEveryPage([this](QWidget &window, const QString &page) { expectRoom(window, page); });
}

INSTANTIATE_TEST_SUITE_P(Directions, ClippingTest, testing::Values(Qt::LeftToRight, Qt::RightToLeft),
                         [](const auto &direction) {
                             return direction.param == Qt::LeftToRight ? "leftToRight" : "rightToLeft";
                         });

} // namespace vesk::test
