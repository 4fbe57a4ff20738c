#include "App/HUDLayout.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

constexpr int Margin = 16; // left and right of what is shown
constexpr int IconStep = 22;
constexpr int SpinnerStep = 24;
constexpr int BarStep = 6;
constexpr int BarWidth = 3;
constexpr int TextAllowance = 6; // what a label needs beyond its text

} // namespace

HUDLayout HUDLayout::listening(bool isLocked, bool isCommand)
{
    HUDLayout layout;
    const int lockWidth = isLocked ? IconStep : 0;
    const int commandWidth = isCommand ? IconStep : 0;
    if (isLocked) {
        layout.lock = QRectF(Margin, 10, 14, 14);
    }
    if (isCommand) {
        layout.command = QRectF(Margin + lockWidth, 9, 16, 16);
    }
    layout.barsLeft = Margin + lockWidth + commandWidth;
    layout.width = lockWidth + 2 * Margin + commandWidth + BarCount * BarStep - (BarStep - BarWidth);
    return layout;
}

HUDLayout HUDLayout::message(qreal drawnWidth, qreal labelHeight, bool isSpinning)
{
    HUDLayout layout;
    const int textWidth = std::min(static_cast<int>(std::ceil(drawnWidth)) + TextAllowance, WidestText);
    const int spinnerWidth = isSpinning ? SpinnerStep : 0;
    if (isSpinning) {
        layout.spinner = QRectF(Margin, 9, 16, 16);
    }
    layout.label = QRectF(spinnerWidth + Margin, (Height - labelHeight) / 2, textWidth, labelHeight);
    layout.width = spinnerWidth + 2 * Margin + textWidth;
    return layout;
}

QRectF HUDLayout::bar(int index, qreal level, qreal barsLeft)
{
    const qreal height = level * 20 + 4;
    return {barsLeft + index * BarStep, (Height - height) / 2, BarWidth, height};
}

QRect HUDLayout::frame(const QRect &visible) const
{
    return {visible.x() + (visible.width() - width) / 2,
            visible.y() + visible.height() - DistanceFromBottom - Height, width, Height};
}

} // namespace vesk
