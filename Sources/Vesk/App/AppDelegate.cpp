#include "App/AppDelegate.h"

#include "App/AppWindows.h"
#include "Dictation/HistoryStore.h"
#include "Dictation/KeptRecordings.h"
#include "Dictation/Transcriber.h"
#include "Foundation/Log.h"
#include "Notes/NotesStore.h"
#include "Platform/DesktopServices.h"
#include "Platform/SpeechModule.h"
#include "Server/AccountStore.h"
#include "Server/ServerClient.h"
#include "Server/ServerError.h"
#include "Windows/CopyText.h"
#include "Windows/HotkeyNames.h"

#include <QClipboard>
#include <QGuiApplication>

namespace vesk {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr auto PermissionInterval = 1s;
constexpr auto GreetingTime = 4s;
constexpr auto ErrorTime = 6s;
/// How long the end of the program waits for another program to take the pasteboard's old content over.
constexpr auto PasteboardPatience = 1s;

} // namespace

AppDelegate::AppDelegate(const Services &services)
    : m_services(services)
    , m_hud(services.clock, services.compositing)
    , m_loan(services.desktop.pasteboard(), services.clock)
    , m_controller({services.clock, services.desktop.permissions(), services.speech.speechModels(),
                    services.speech.audioFiles(), services.speech.audioConverters(),
                    services.desktop.audioDevices(), services.desktop.audioEngines(),
                    services.desktop.accessibility(), services.desktop.pasteboard(), m_loan,
                    services.desktop.keyPoster(), services.server, services.history},
                   *this)
    , m_hotkey(services.desktop.keyEvents(), [this] { return m_controller.config().watchedKeys(); })
{
    m_hotkey.onPress = [this](HotkeyKey key) { m_controller.pressed(key, m_hotkey.age()); };
    m_hotkey.onRelease = [this](HotkeyKey key) { m_controller.released(key, m_hotkey.age()); };
    m_hotkey.onOtherKey = [this] { m_controller.otherKeyUsed(); };
    // Hands-free dictation ends by a key, and a locked screen has none.
    m_services.desktop.setLockHandler(
        [this] { m_controller.stopListening(u"The screen was locked, so the dictation was dropped."_s); });
    m_services.windows.setSettingsHandler(
        [this] { m_controller.reloadConfig(); }); // another key counts at once
}

AppDelegate::~AppDelegate()
{
    m_gone.cancel();
    m_services.windows.setSettingsHandler({});
    m_services.desktop.setLockHandler({});
}

void AppDelegate::applicationDidFinishLaunching(bool isFirst)
{
    m_controller.reloadConfig();
    if (const auto recording = KeptRecordings::recover()) {
        m_controller.offerRetry(*recording);
    }
    StatusMenu::Owner &menuOwner = *this;
    m_statusItem.emplace(m_services.trayHost, menuOwner);
    m_statusItem->setIndicator(DictationController::Indicator::idle);
    m_hotkey.start();
    watchForAccessibility();
    launch(u"speech model"_s, prepareModel(this, m_gone));
    const bool isSignedIn = ServerClient::current(m_services.server).token().has_value();
    Log::write(u"launch speech=%1 signed_in=%2"_s.arg(m_controller.config().speech,
                                                      isSignedIn ? u"true"_s : u"false"_s));
    launch(u"account refresh"_s, m_services.account.refresh());
    greet(isFirst);
}

void AppDelegate::greet(bool isFirst)
{
    const bool isComplete = m_services.windows.isSetupComplete();
    // Where nothing is missing the first launch would show nothing at all on a desktop without a panel.
    if (isFirst || !isComplete) {
        openSetup();
    }
    if (!isComplete) {
        return;
    }
    const QString key = hotkeyName(m_controller.config().dictationKey());
    m_hud.flash(u"Vesk is in the menu bar. Hold %1 and speak"_s.arg(key), GreetingTime);
}

void AppDelegate::applicationShouldHandleReopen()
{
    if (m_services.desktop.permissions().microphone().isAvailable()) {
        openMain();
    } else {
        openSetup();
    }
}

void AppDelegate::applicationWillTerminate()
{
    m_gone.cancel();
    m_hotkey.stop();
    m_controller.stopListening({});
    m_hud.hide();
    KeptRecordings::discardUnmarked();
    keepOwnCopy();
    m_loan.finish(PasteboardPatience);
    m_services.history.flush();
    NotesStore::flushShared();
    Log::flush();
}

/// What the person copied in a window of ours is Qt's, and would end with it; the pasteboard outlives the
/// program.
void AppDelegate::keepOwnCopy()
{
    const QClipboard &clipboard = *QGuiApplication::clipboard();
    const QString text = clipboard.ownsClipboard() ? clipboard.text() : QString();
    if (!text.isEmpty()) {
        copyText(m_services.desktop.pasteboard(), text);
    }
}

void AppDelegate::setIndicator(DictationController::Indicator indicator)
{
    if (m_statusItem) {
        m_statusItem->setIndicator(indicator);
    }
}

void AppDelegate::noticeAccount(const ServerError &error)
{
    if (error.errorCase() == ServerError::Case::signedOut) {
        launch(u"account refresh"_s, m_services.account.refresh());
    }
}

StatusMenu::State AppDelegate::menuNeedsUpdate()
{
    m_controller.reloadConfig();
    return {needsAccess(), m_controller.configError(), m_controller.hasLastText(), m_controller.canRetry()};
}

void AppDelegate::openSetup() { m_services.windows.openSetup(); }
void AppDelegate::openMain() { m_services.windows.openMain(); }
void AppDelegate::openSettings() { m_services.windows.openSettings(); }

bool AppDelegate::needsAccess() const
{
    const Permissions &permissions = m_services.desktop.permissions();
    return !permissions.accessibility().isAvailable() || !permissions.microphone().isAvailable();
}

void AppDelegate::watchForAccessibility()
{
    if (!m_services.desktop.permissions().accessibility().isAvailable()) {
        launch(u"permission watch"_s, startWhenTrusted(this, m_gone));
    }
}

Task<> AppDelegate::startWhenTrusted(AppDelegate *application, CancellationToken gone)
{
    do {
        co_await application->m_services.clock.after(PermissionInterval);
        if (gone.isCancelled()) {
            co_return;
        }
    } while (!application->m_services.desktop.permissions().accessibility().isAvailable());
    application->m_hotkey.start();
}

Task<> AppDelegate::prepareModel(AppDelegate *application, CancellationToken gone)
{
    const QString locale = application->m_controller.config().locale;
    // After the greeting, which would hide a failure that shows at once.
    co_await application->m_services.clock.after(0ms);
    if (gone.isCancelled()) {
        co_return;
    }
    QString failure;
    try {
        co_await Transcriber::prepare(application->m_services.speech.speechModels(), locale);
        Log::write(u"speech model ready locale="_s + locale);
        co_return;
    } catch (const std::exception &error) {
        failure = describe(error);
    }
    Log::write(u"speech model error "_s + failure);
    if (!gone.isCancelled()) {
        application->m_hud.flash(failure, ErrorTime);
    }
}

} // namespace vesk
