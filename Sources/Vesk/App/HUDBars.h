#pragma once

#include "App/HUDLayout.h"

#include <QVariantAnimation>

#include <functional>

namespace vesk {

/// The bars of the listening indicator: the last levels of the microphone, oldest first, and how far the
/// drawing has followed them. Runs a timer only while bars move. Main thread.
class HUDBars {
public:
    using Frames = std::array<QRectF, HUDLayout::BarCount>;

    /// `changed` is called whenever frames() gives something else.
    explicit HUDBars(std::function<void()> changed);

    /// All levels to 0.
    void clear() { m_levels = {}; }
    /// Drops the oldest level and appends this one, 0 to 1.
    void append(float level);

    /// Bars that are to be seen move to their levels in 0.08 s.
    void moveTo(qreal left);
    /// Bars that were not seen stand there at once.
    void place(qreal left);
    /// Follows the levels where the bars stand.
    void follow() { moveTo(m_left); }
    void stop() { m_animation.stop(); }

    Frames frames() const;
    bool isMoving() const { return m_animation.state() == QAbstractAnimation::Running; }

private:
    Frames goal() const;

    std::array<float, HUDLayout::BarCount> m_levels = {};
    qreal m_left = 0;
    Frames m_from;
    Frames m_to;
    QVariantAnimation m_animation;
};

} // namespace vesk
