#pragma once

#include "Foundation/HotkeyKey.h"

#include <QString>

namespace vesk {

/// The key's name within a sentence: "right Option".
QString hotkeyName(HotkeyKey key);

/// The name with what is printed on the key, for a choice.
QString hotkeyLabel(HotkeyKey key);

} // namespace vesk
