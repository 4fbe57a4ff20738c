#include "Windows/LevelBar.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace vesk {

LevelBar::LevelBar(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void LevelBar::setLevel(float level)
{
    // Falls slower than it rises, so that a syllable can be seen.
    constexpr float Fall = 0.12F;
    const float shown = level == 0 ? 0 : std::clamp(std::max(level, m_level - Fall), 0.F, 1.F);
    if (shown != m_level) {
        m_level = shown;
        update();
    }
}

QSize LevelBar::sizeHint() const { return {fontMetrics().height() * 10, fontMetrics().height() / 2}; }

void LevelBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF whole = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const double radius = whole.height() / 2;
    QPainterPath shape;
    shape.addRoundedRect(whole, radius, radius);
    QColor ground = palette().color(QPalette::WindowText);
    ground.setAlphaF(0.15F);
    painter.fillPath(shape, ground);
    QRectF filled = whole;
    filled.setWidth(whole.width() * static_cast<double>(m_level));
    if (layoutDirection() == Qt::RightToLeft) {
        filled.moveRight(whole.right());
    }
    painter.setClipRect(filled);
    painter.fillPath(shape, palette().color(QPalette::Highlight));
}

} // namespace vesk
