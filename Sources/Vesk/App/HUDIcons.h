#pragma once

#include <QPainterPath>

/// What the listening indicator says without words; paths to be filled.
namespace vesk::HUDIcons {

/// A closed lock in a square of 14: hands-free.
QPainterPath lock();

/// A wand with sparks in a square of 16: a voice command.
QPainterPath wand();

/// One of the spokes of the spinner, pointing up from the origin to the edge of a square of 16.
QPainterPath spoke();

} // namespace vesk::HUDIcons
