#pragma once

#include "App/AppWindows.h"
#include "MCP/MCPSetup.h"
#include "Windows/SettingsStore.h"
#include "Windows/SetupModel.h"
#include "Windows/WindowServices.h"

#include <memory>

namespace vesk {

class MainWindow;
class OtherPrograms;
class SetupWindow;
class SpeechModels;
class TrayHost;

/// The main window and set-up, made when they are first opened: most days nobody opens them. Main thread.
class DictationWindows final : public AppWindows {
public:
    /// All of it outlives the windows.
    struct Services {
        HistoryStore &history;
        AccountStore &account;
        DesktopServices &desktop;
        LoginItem &loginItem;
        Clock &clock;
        SpeechModels &models;
        const TrayHost &trayHost;
        const OtherPrograms &programs;
        QString program; ///< the path of the executable, for AI applications to start
    };

    explicit DictationWindows(const Services &services);
    ~DictationWindows() override;

    void setSettingsHandler(std::function<void()> handler) override
    {
        m_settingsChanged = std::move(handler);
    }
    void openMain() override;
    void openSettings() override;
    void openSetup() override;
    bool isSetupComplete() override { return m_setupModel.isReady(); }

private:
    MainWindow &mainWindow();

    Services m_services;
    std::function<void()> m_settingsChanged;
    SettingsStore m_settings;
    MCPSetup m_mcpSetup;
    WindowServices m_windowServices;
    SetupModel m_setupModel;
    std::unique_ptr<MainWindow> m_main;
    std::unique_ptr<SetupWindow> m_setup;
};

} // namespace vesk
