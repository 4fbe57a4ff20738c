#include "Windows/PageScroll.h"

#include <QAccessibleWidget>

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
}

} // namespace vesk
