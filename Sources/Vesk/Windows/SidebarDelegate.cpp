#include "Windows/SidebarDelegate.h"

#include "Windows/MainWindow.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>

namespace vesk {

namespace {

/// The sign of a page in a square of 16 units.
QPainterPath sign(Page page)
{
    QPainterPath path;
    const auto line = [&path](std::initializer_list<QPointF> points) {
        path.addPolygon(QPolygonF(QList<QPointF>(points)));
    };
    switch (page) {
    case Page::home:
        line({{1, 8}, {8, 2}, {15, 8}});
        line({{3.5, 6.5}, {3.5, 14}, {12.5, 14}, {12.5, 6.5}});
        break;
    case Page::notes:
        path.addRoundedRect(QRectF(2.5, 1.5, 11, 13), 1.5, 1.5);
        line({{5.5, 5.5}, {10.5, 5.5}});
        line({{5.5, 8.5}, {10.5, 8.5}});
        break;
    case Page::history:
        path.addEllipse(QPointF(8, 8), 6.5, 6.5);
        line({{8, 4}, {8, 8}, {11, 9.5}});
        break;
    case Page::dictionary:
        path.addRoundedRect(QRectF(2.5, 1.5, 11, 13), 1.5, 1.5);
        line({{5.5, 1.5}, {5.5, 14.5}});
        break;
    case Page::settings:
        for (const auto &[y, knob] : {std::pair(3.5, 10.5), std::pair(8.0, 5.0), std::pair(12.5, 9.0)}) {
            line({{1, y}, {knob - 1.75, y}});
            line({{knob + 1.75, y}, {15, y}});
            path.addEllipse(QPointF(knob, y), 1.75, 1.75);
        }
        break;
    }
    return path;
}

} // namespace

void SidebarDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QString title = row.text;
    row.text.clear(); // the style draws the ground and the focus
    const QStyle *style = row.widget != nullptr ? row.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);

    const auto group = row.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    const auto role = row.state.testFlag(QStyle::State_Selected) ? QPalette::HighlightedText : QPalette::Text;
    const int side = row.fontMetrics.height();
    const QRect inner = row.rect.adjusted(side * 2 / 3, 0, -side * 2 / 3, 0);
    const QRect signPlace =
        QStyle::alignedRect(row.direction, Qt::AlignLeading | Qt::AlignVCenter, {side, side}, inner);
    const QRect textPlace = QStyle::visualRect(row.direction, inner, inner.adjusted(side * 5 / 3, 0, 0, 0));
    painter->save();
    painter->setPen(row.palette.color(group, role));
    painter->setFont(row.font);
    painter->drawText(textPlace, Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine, title);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(signPlace.topLeft());
    painter->scale(side / 16.0, side / 16.0);
    painter->setPen(QPen(painter->pen().color(), 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->setBrush(Qt::NoBrush);
    painter->drawPath(sign(static_cast<Page>(index.data(Qt::UserRole).toInt())));
    painter->restore();
}

QSize SidebarDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const int height = option.fontMetrics.height();
    return {option.fontMetrics.horizontalAdvance(index.data().toString()) + (height * 3), height * 2};
}

} // namespace vesk
