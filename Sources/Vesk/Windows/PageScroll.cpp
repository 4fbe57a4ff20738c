#include "Windows/PageScroll.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QEvent>
#include <QScrollBar>

#include <algorithm>

namespace vesk {

namespace {

// Qt's interface for scroll areas takes the number of a child without looking how many there are (6.4).
QAccessibleInterface *describe(const QString &className, QObject *object)
{
    auto *widget = className == u"vesk::PageScroll" ? qobject_cast<QWidget *>(object) : nullptr;
    return widget != nullptr ? new QAccessibleWidget(widget, QAccessible::Pane) : nullptr; // Qt keeps it
}

} // namespace

PageScroll::PageScroll(QWidget *parent)
    : QScrollArea(parent)
{
    QAccessible::installFactory(describe); // once, however often it is said
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus); // its controls scroll it
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Qt itself scrolls only to where the focus goes from another control of the page.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        if (now != nullptr && widget() != nullptr && widget()->isAncestorOf(now)) {
            ensureWidgetVisible(now);
        }
    });
}

QSize PageScroll::minimumSizeHint() const
{
    const QSize least = QScrollArea::minimumSizeHint();
    const int page = widget() != nullptr ? widget()->minimumSizeHint().width() : 0;
    return {std::max(least.width(), page + verticalScrollBar()->sizeHint().width()), least.height()};
}

bool PageScroll::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        updateGeometry(); // the page may be wider now
    }
    return QScrollArea::eventFilter(watched, event);
}

} // namespace vesk
