#pragma once

#include "App/StatusMenu.h"
#include "Dictation/DictationController.h"

#include <QSystemTrayIcon>

#include <memory>

namespace vesk {

class TrayHost;

/// The item in the desktop's panel: what dictation is doing, and the menu. It appears as soon as there is a
/// tray to show it and comes back when the tray does. Main thread.
class StatusItem {
public:
    using Indicator = DictationController::Indicator;

    /// Both outlive it. Needs a QApplication.
    StatusItem(TrayHost &host, StatusMenu::Owner &owner);
    ~StatusItem();
    StatusItem(const StatusItem &) = delete;
    StatusItem &operator=(const StatusItem &) = delete;

    void setIndicator(Indicator indicator);

private:
    void appear();

    TrayHost &m_host;
    StatusMenu::Owner &m_owner;
    StatusMenu m_menu;
    std::unique_ptr<QSystemTrayIcon> m_icon; ///< null until there has been a tray
    Indicator m_indicator = Indicator::idle;
};

} // namespace vesk
