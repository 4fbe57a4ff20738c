#include "App/HUDBars.h"

#include <algorithm>

namespace vesk {

HUDBars::HUDBars(std::function<void()> changed)
{
    m_animation.setDuration(80);
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(1.0);
    m_animation.setEasingCurve(QEasingCurve::InOutSine);
    QObject::connect(&m_animation, &QVariantAnimation::valueChanged, &m_animation,
                     [changed = std::move(changed)] { changed(); });
}

void HUDBars::append(float level)
{
    std::rotate(m_levels.begin(), m_levels.begin() + 1, m_levels.end());
    m_levels.back() = std::clamp(level, 0.F, 1.F);
}

HUDBars::Frames HUDBars::goal() const
{
    Frames frames;
    for (int i = 0; i < HUDLayout::BarCount; ++i) {
        frames.at(i) = HUDLayout::bar(i, static_cast<qreal>(m_levels.at(i)), m_left);
    }
    return frames;
}

void HUDBars::moveTo(qreal left)
{
    const Frames current = frames();
    m_left = left;
    m_from = current;
    m_to = goal();
    m_animation.stop();
    if (m_from != m_to) { // in silence nothing moves, and nothing is drawn
        m_animation.start();
    }
}

void HUDBars::place(qreal left)
{
    m_animation.stop();
    m_left = left;
    m_from = m_to = goal();
}

HUDBars::Frames HUDBars::frames() const
{
    if (!isMoving()) {
        return m_to;
    }
    const qreal part = m_animation.currentValue().toReal();
    Frames frames;
    for (int i = 0; i < HUDLayout::BarCount; ++i) {
        const QRectF &from = m_from.at(i);
        const QRectF &to = m_to.at(i);
        frames.at(i) = QRectF(from.topLeft() + (to.topLeft() - from.topLeft()) * part,
                              from.size() + (to.size() - from.size()) * part);
    }
    return frames;
}

} // namespace vesk
