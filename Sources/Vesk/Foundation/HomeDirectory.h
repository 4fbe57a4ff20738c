#pragma once

#include <QString>

namespace vesk {

/// The person's home folder: HOME when it names an absolute path, else the account's entry, so that a program
/// started with an empty environment finds the same files. Never empty; "/" when the account has no folder at
/// all.
QString homeDirectory();

} // namespace vesk
