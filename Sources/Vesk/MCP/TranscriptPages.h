#pragma once

#include <QStringList>

namespace vesk {

/// Packs lines into pages of at most `PageSize` user-perceived characters, the line feeds between them
/// included. A longer line is a page of its own; none is ever split.
QStringList transcriptPages(const QStringList &lines);

inline constexpr qsizetype PageSize = 40'000;

} // namespace vesk
