#include "Windows/HotkeyNames.h"

#include <QCoreApplication>

namespace vesk {

QString hotkeyName(HotkeyKey key)
{
    switch (key) {
    case HotkeyKey::rightOption: return QCoreApplication::translate("Hotkey", "right Option");
    case HotkeyKey::rightCommand: return QCoreApplication::translate("Hotkey", "right Command");
    case HotkeyKey::fn: return QCoreApplication::translate("Hotkey", "fn");
    }
    Q_UNREACHABLE();
}

QString hotkeyLabel(HotkeyKey key)
{
    switch (key) {
    case HotkeyKey::rightOption: return QCoreApplication::translate("Hotkey", "Right Option (right Alt)");
    case HotkeyKey::rightCommand:
        return QCoreApplication::translate("Hotkey", "Right Command (right Ctrl or Super)");
    case HotkeyKey::fn: return QCoreApplication::translate("Hotkey", "fn");
    }
    Q_UNREACHABLE();
}

} // namespace vesk
