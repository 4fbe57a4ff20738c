#pragma once

#include <QString>

namespace vesk {

/// The home folder of this test program (see TestMain.cpp).
QString testHome();

/// Deletes everything in it, so that a case starts as on a new machine.
void emptyTestHome();

/// The permission bits of a file, as chmod takes them; -1 when there is none.
int modeOf(const QString &path);

} // namespace vesk
