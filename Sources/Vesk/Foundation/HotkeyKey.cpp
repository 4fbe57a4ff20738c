#include "Foundation/HotkeyKey.h"

#include <QString>

namespace vesk {

QString rawValue(HotkeyKey key)
{
    switch (key) {
    case HotkeyKey::rightOption: return QStringLiteral("rightOption");
    case HotkeyKey::rightCommand: return QStringLiteral("rightCommand");
    case HotkeyKey::fn: return QStringLiteral("fn");
    }
    Q_UNREACHABLE();
}

int virtualKeyCode(HotkeyKey key)
{
    switch (key) {
    case HotkeyKey::rightOption: return 61;
    case HotkeyKey::rightCommand: return 54;
    case HotkeyKey::fn: return 63;
    }
    Q_UNREACHABLE();
}

quint64 modifierFlag(HotkeyKey key)
{
    switch (key) {
    case HotkeyKey::rightOption: return 0x40;
    case HotkeyKey::rightCommand: return 0x10;
    case HotkeyKey::fn: return 0x80'0000;
    }
    Q_UNREACHABLE();
}

std::optional<HotkeyKey> hotkeyKey(QStringView text)
{
    for (const HotkeyKey key : AllHotkeyKeys) {
        if (rawValue(key) == text) {
            return key;
        }
    }
    return std::nullopt;
}

} // namespace vesk
