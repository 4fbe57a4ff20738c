#pragma once

#include <QColor>
#include <QIcon>
#include <QPainterPath>

#include <array>

class QPainter;

/// The mark of Vesk: a voice that swells and becomes a text cursor. Three filled paths and one colour, so
/// that it serves as a template; fitted to whole pixels, so that it is sharp in a panel. Main thread.
namespace vesk::Glyph {

using Paths = std::array<QPainterPath, 3>;

/// The paths in a square of that many pixels, 16 or more, with the origin at its upper left corner.
Paths paths(int side);

/// Fills the mark into a square of device pixels at the painter's origin.
void menuBar(QPainter &painter, int side, const QColor &tint);

enum class Look { normal, disabled };

/// The mark alone, drawn anew for whatever size is asked for.
QIcon icon(const QColor &tint, Look look);

/// Of the application's icon.
inline constexpr QColor Plate(0xe4, 0x52, 0x45);
inline constexpr QColor OnPlate(0xff, 0xff, 0xff);

/// The mark on a plate of its own, for windows and launchers, where the background is anyone's guess.
QIcon applicationIcon();

} // namespace vesk::Glyph
