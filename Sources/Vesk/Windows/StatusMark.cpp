#include "Windows/StatusMark.h"

#include <QPainter>

namespace vesk {

namespace {

struct Look {
    QColor colour;                 ///< stands out from light and dark grounds alike
    QList<QList<QPointF>> strokes; ///< within a circle of radius 1
};

Look look(StatusMark::Status status)
{
    switch (status) {
    case StatusMark::Status::good:
        return {QColor(0x2e, 0x8b, 0x57), {{{-0.45, 0.05}, {-0.1, 0.4}, {0.5, -0.35}}}};
    case StatusMark::Status::advice:
        return {QColor(0xb7, 0x79, 0x00), {{{0, -0.55}, {0, 0.1}}, {{0, 0.49}, {0, 0.51}}}};
    case StatusMark::Status::missing:
        return {QColor(0xc6, 0x28, 0x28), {{{-0.38, -0.38}, {0.38, 0.38}}, {{-0.38, 0.38}, {0.38, -0.38}}}};
    }
    Q_UNREACHABLE();
}

} // namespace

StatusMark::StatusMark(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setStatus(Status::good);
}

void StatusMark::setStatus(Status status)
{
    m_status = status;
    switch (status) {
    case Status::good: setAccessibleName(tr("Done")); break;
    case Status::advice: setAccessibleName(tr("Could be better")); break;
    case Status::missing: setAccessibleName(tr("Missing")); break;
    }
    update();
}

QSize StatusMark::sizeHint() const
{
    const int side = fontMetrics().height() + 2;
    return {side, side};
}

void StatusMark::paintEvent(QPaintEvent *)
{
    const Look now = look(m_status);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(QRectF(rect()).center());
    painter.scale(width() / 2.0, height() / 2.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(now.colour);
    painter.drawEllipse(QPointF(0, 0), 0.95, 0.95);
    painter.setPen(QPen(Qt::white, 0.22, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    for (const QList<QPointF> &stroke : now.strokes) {
        painter.drawPolyline(QPolygonF(stroke));
    }
}

} // namespace vesk
