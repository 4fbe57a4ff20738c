#include "App/Glyph.h"

#include <QIconEngine>
#include <QPainter>

#include <cmath>

namespace vesk::Glyph {

namespace {

constexpr qreal DisabledOpacity = 0.45;

/// Lengths of the mark in a square of 16, brought to whole pixels of the square at hand.
class Grid {
public:
    explicit Grid(int side)
        : m_side(side)
    {
    }

    int length(qreal units) const { return std::max(1, static_cast<int>(std::lround(units * m_side / 16))); }

    /// Lengths that leave the same whole number of pixels on both sides.
    int centred(qreal units) const
    {
        const int rounded = length(units);
        return (m_side - rounded) % 2 == 0 ? rounded : rounded + (rounded < units * m_side / 16 ? 1 : -1);
    }

    /// A rounded bar in the middle of the height.
    QPainterPath bar(int x, int width, int height) const
    {
        QPainterPath path;
        path.addRoundedRect(x, (m_side - height) / 2., width, height, width / 2., width / 2.);
        return path;
    }

private:
    int m_side;
};

QPainterPath stroked(const QPainterPath &line, qreal width)
{
    QPainterPathStroker stroker;
    stroker.setWidth(width);
    stroker.setCapStyle(Qt::RoundCap);
    stroker.setJoinStyle(Qt::RoundJoin);
    return stroker.createStroke(line);
}

/// A stem whose ends open to both sides, like the cursor over text; the arms are thinner than the stem.
QPainterPath cursor(const QRectF &square, qreal stem, qreal arm)
{
    const qreal middle = square.center().x();
    const qreal bend = square.width() * 0.45;
    QPainterPath arms;
    const auto addArm = [&](qreal side, qreal end, qreal inwards) {
        arms.moveTo(middle, end + inwards * bend);
        arms.quadTo(middle, end + inwards * arm / 2, side, end + inwards * arm / 2);
    };
    for (const qreal side : {square.left() + arm / 2, square.right() - arm / 2}) {
        addArm(side, square.top(), 1);
        addArm(side, square.bottom(), -1);
    }
    QPainterPath outline = stroked(arms, arm);
    const qreal height = square.height() - bend * 0.75;
    outline.addRoundedRect(middle - stem / 2, square.center().y() - height / 2, stem, height, stem / 2,
                           stem / 2);
    outline.setFillRule(Qt::WindingFill);
    outline = outline.simplified();
    outline.setFillRule(Qt::WindingFill);
    return outline;
}

/// Draws the mark for every size that is asked of an icon, where a pixmap would be scaled and blurred.
class Engine final : public QIconEngine {
public:
    Engine(QColor tint, QColor plate)
        : m_tint(tint)
        , m_plate(plate)
    {
    }

    QIconEngine *clone() const override { return new Engine(m_tint, m_plate); }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const qreal ratio = painter->device()->devicePixelRatioF();
        draw(*painter, QRectF(rect), ratio, mode);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State) override
    {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        draw(painter, QRectF(QPointF(), QSizeF(size)), 1, mode);
        return picture;
    }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override
    {
        QList<QSize> sizes;
        for (const int side : {16, 18, 20, 22, 24, 32, 36, 44, 48, 64, 128, 256}) {
            sizes.append(QSize(side, side));
        }
        return sizes;
    }

private:
    void draw(QPainter &painter, const QRectF &rect, qreal ratio, QIcon::Mode mode) const
    {
        const int side = static_cast<int>(std::min(rect.width(), rect.height()) * ratio);
        painter.save();
        painter.translate(rect.center() - QPointF(side, side) / (2 * ratio));
        painter.scale(1 / ratio, 1 / ratio);
        painter.setOpacity(mode == QIcon::Disabled ? DisabledOpacity : 1);
        int margin = 0;
        if (m_plate.isValid()) {
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(Qt::NoPen);
            painter.setBrush(m_plate);
            painter.drawRoundedRect(QRectF(0, 0, side, side), side * 0.225, side * 0.225);
            margin = side / 6;
            painter.translate(margin, margin);
        }
        menuBar(painter, side - 2 * margin, m_tint);
        painter.restore();
    }

    QColor m_tint;
    QColor m_plate;
};

} // namespace

Paths paths(int side)
{
    const Grid grid(side);
    const int stroke = grid.length(2);
    const int gap = grid.length(1.6);
    const int tall = grid.centred(14);
    const int room = side - 2 * grid.length(0.8) - 2 * (stroke + gap); // for the cursor
    int width = grid.length(6.4);
    if ((width - stroke) % 2 != 0) { // its stem has to stand on whole pixels
        width += width < room ? 1 : -1;
    }
    const int left = (side - (2 * stroke + 2 * gap + width)) / 2;
    const int cursorLeft = left + 2 * (stroke + gap);
    return {grid.bar(left, stroke, grid.centred(4)), grid.bar(left + stroke + gap, stroke, grid.centred(9)),
            cursor(QRectF(cursorLeft, (side - tall) / 2., width, tall), stroke, grid.length(1.5))};
}

void menuBar(QPainter &painter, int side, const QColor &tint)
{
    painter.setRenderHint(QPainter::Antialiasing);
    for (const QPainterPath &path : paths(side)) {
        painter.fillPath(path, tint);
    }
}

QIcon icon(const QColor &tint, Look look)
{
    QColor colour = tint;
    if (look == Look::disabled) {
        // Trays ask for the normal picture only: what is disabled has to look so in itself.
        colour.setAlphaF(colour.alphaF() * static_cast<float>(DisabledOpacity));
    }
    return QIcon(new Engine(colour, QColor()));
}

QIcon applicationIcon() { return QIcon(new Engine(OnPlate, Plate)); }

} // namespace vesk::Glyph
