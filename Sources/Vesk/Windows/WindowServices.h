#pragma once

#include "Platform/Availability.h"

#include <functional>

namespace vesk {

class AccountStore;
class Clock;
class DesktopServices;
class HistoryStore;
class LoginItem;
class MCPSetup;
class SettingsStore;

/// What the windows show and change. All of it outlives them.
struct WindowServices {
    SettingsStore &settings;
    HistoryStore &history;
    AccountStore &account;
    const MCPSetup &mcpSetup;
    DesktopServices &desktop;
    LoginItem &loginItem;
    Clock &clock;

    /// Whether the model of a locale is installed; it must not load it. Reads the disk.
    std::function<Availability(const QString &locale)> speechModel;
    /// Whether the desktop shows Vesk's icon.
    std::function<Availability()> tray;
    /// The person has switched Vesk's notifications off in the system's settings.
    std::function<bool()> notificationsOff;
};

} // namespace vesk
