#pragma once

#include <QRectF>

#include <array>

namespace vesk {

/// Where everything stands on the listening indicator, in logical pixels from its upper left corner. The
/// indicator is symmetric from top to bottom, so the direction of y matters only for its place on the screen.
struct HUDLayout {
    static constexpr int Height = 34;
    static constexpr int BarCount = 13;
    static constexpr int DistanceFromBottom = 28;
    static constexpr int WidestText = 520;

    int width = 0;
    QRectF lock; ///< null when it is not shown, like the others
    QRectF command;
    QRectF spinner;
    QRectF label;
    qreal barsLeft = 0;

    static HUDLayout listening(bool isLocked, bool isCommand);

    /// For a text that would be drawn so wide and whose label is naturally so high.
    static HUDLayout message(qreal drawnWidth, qreal labelHeight, bool isSpinning);

    /// A bar from the left, for a level of 0 to 1.
    static QRectF bar(int index, qreal level, qreal barsLeft);

    /// On a screen whose part that panels leave free is given.
    QRect frame(const QRect &visible) const;
};

} // namespace vesk
