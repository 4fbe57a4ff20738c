#pragma once

#include "App/HUD.h"
#include "App/StatusItem.h"
#include "App/StatusMenu.h"
#include "Dictation/DictationController.h"
#include "Dictation/Hotkey.h"
#include "Dictation/PasteboardLoan.h"

#include <optional>

namespace vesk {

class AccountStore;
class AppWindows;
class Compositing;
class DesktopServices;
class SpeechModule;
class TrayHost;

/// The running application: starts everything in its order, joins the keyboard to dictation and dictation to
/// what the person sees, and answers the menu. Main thread; one for the life of the process.
class AppDelegate final : private DictationController::Display, private StatusMenu::Owner {
public:
    /// All of it outlives the application.
    struct Services {
        Clock &clock;
        SpeechModule &speech;
        DesktopServices &desktop;
        ServerConnection &server;
        HistoryStore &history;
        AccountStore &account;
        AppWindows &windows;
        TrayHost &trayHost;
        const Compositing &compositing;
        std::function<void()> quit; ///< ends the event loop
    };

    explicit AppDelegate(const Services &services);
    ~AppDelegate() override;

    /// Once, on the running event loop. The person's first launch opens the set-up window, where the key can
    /// be tried; later ones only where something is missing.
    void applicationDidFinishLaunching(bool isFirst);

    /// The program was started once more.
    void applicationShouldHandleReopen();

    /// For the end of the program: nothing is recorded or typed any more, and the person's pasteboard is
    /// given back.
    void applicationWillTerminate();

private:
    using Display = DictationController::Display;

    // Display
    void setIndicator(DictationController::Indicator indicator) override;
    void showListening(bool locked, bool command) override { m_hud.showListening(locked, command); }
    void setLevel(float level) override { m_hud.setLevel(level); }
    void showText(const QString &text, bool spinning) override { m_hud.showText(text, spinning); }
    void flash(const QString &text, std::chrono::milliseconds time) override { m_hud.flash(text, time); }
    void hide() override { m_hud.hide(); }
    void noticeAccount(const ServerError &error) override;

    // StatusMenu::Owner; openSetup() is the display's as well
    StatusMenu::State menuNeedsUpdate() override;
    void openSetup() override;
    void openMain() override;
    void openSettings() override;
    void copyLastText() override { m_controller.copyLastText(); }
    void retryLast() override { m_controller.retryLast(); }
    void quit() override { m_services.quit(); }

    void keepOwnCopy();
    bool needsAccess() const;
    void watchForAccessibility();
    void greet(bool isFirst);

    static Task<> startWhenTrusted(AppDelegate *application, CancellationToken gone);
    static Task<> prepareModel(AppDelegate *application, CancellationToken gone);

    Services m_services;
    HUD m_hud;
    PasteboardLoan m_loan;
    DictationController m_controller;
    std::optional<StatusItem> m_statusItem; ///< from the launch on
    Hotkey m_hotkey;
    CancellationToken m_gone; ///< for what still waits when the application has ended
};

} // namespace vesk
