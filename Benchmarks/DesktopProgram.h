#pragma once

#include "Desktop/PrivateDesktop.h"

#include <functional>

namespace vesk::test {

/// The whole main function of a program that works on a desktop of its own: `body` is given the arguments,
/// without the program's name, and the result is the exit status. An exception is told on standard error and
/// is status 1; what the program leaves behind is ended.
int runOnPrivateDesktop(int argc, char **argv, const std::function<int(const QStringList &)> &body,
                        const QString &screen = PrivateDesktop::StandardScreen);

} // namespace vesk::test
