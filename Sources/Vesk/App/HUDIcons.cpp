#include "App/HUDIcons.h"

namespace vesk::HUDIcons {

namespace {

QPainterPath stroked(const QPainterPath &line, qreal width, Qt::PenCapStyle cap)
{
    QPainterPathStroker stroker;
    stroker.setWidth(width);
    stroker.setCapStyle(cap);
    return stroker.createStroke(line);
}

/// Four points whose sides bend inwards.
QPainterPath spark(const QPointF &middle, qreal radius)
{
    QPainterPath path;
    path.moveTo(middle.x(), middle.y() - radius);
    const qreal waist = radius * 0.18;
    const auto point = [&](qreal x, qreal y, qreal waistX, qreal waistY) {
        path.quadTo(middle + QPointF(waistX, waistY), middle + QPointF(x, y));
    };
    point(radius, 0, waist, -waist);
    point(0, radius, waist, waist);
    point(-radius, 0, -waist, waist);
    point(0, -radius, -waist, -waist);
    return path;
}

} // namespace

QPainterPath lock()
{
    QPainterPath shackle;
    shackle.moveTo(4, 7);
    shackle.lineTo(4, 4.3);
    shackle.arcTo(QRectF(4, 1.3, 6, 6), 180, -180);
    shackle.lineTo(10, 7);
    QPainterPath path = stroked(shackle, 1.6, Qt::FlatCap);
    path.addRoundedRect(QRectF(2, 6, 10, 7.5), 1.8, 1.8);
    path.setFillRule(Qt::WindingFill);
    return path;
}

QPainterPath wand()
{
    QPainterPath line;
    line.moveTo(2.2, 13.8);
    line.lineTo(8.6, 7.4);
    QPainterPath path = stroked(line, 2.2, Qt::RoundCap);
    path.addPath(spark({11.4, 4.6}, 3.9));
    path.addPath(spark({4.4, 4.4}, 2.6));
    path.addPath(spark({13.2, 12}, 2.4));
    path.setFillRule(Qt::WindingFill);
    return path;
}

QPainterPath spoke()
{
    QPainterPath line;
    line.moveTo(0, -4);
    line.lineTo(0, -6.6);
    return stroked(line, 1.8, Qt::RoundCap);
}

} // namespace vesk::HUDIcons
