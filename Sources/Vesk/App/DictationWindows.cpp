#include "App/DictationWindows.h"

#include "App/MainMenu.h"
#include "Foundation/VeskError.h"
#include "Platform/SpeechModels.h"
#include "Platform/TrayHost.h"
#include "Windows/MainWindow.h"
#include "Windows/SetupWindow.h"

#include <QCoreApplication>

namespace vesk {

namespace {

Availability modelOf(SpeechModels &models, const QString &locale)
{
    const auto supported = models.supportedLocale(locale);
    if (!supported) {
        return Availability::unavailable(VeskError::unsupportedLocale(locale).errorDescription());
    }
    return models.bestAudioFormat(*supported)
        ? Availability::available()
        : Availability::unavailable(VeskError::noSpeechModel().errorDescription());
}

Availability trayOf(const TrayHost &host)
{
    return host.kind() != TrayHost::Kind::none
        ? Availability::available()
        : Availability::unavailable(QCoreApplication::translate(
              "DictationWindows",
              "This desktop has no place for Vesk's icon. Start Vesk again to open its window."));
}

} // namespace

DictationWindows::DictationWindows(const Services &services)
    : m_services(services)
    , m_mcpSetup(services.programs, services.program)
    , m_windowServices{m_settings,
                       services.history,
                       services.account,
                       m_mcpSetup,
                       services.desktop,
                       services.loginItem,
                       services.clock,
                       [&models = services.models](const QString &locale) { return modelOf(models, locale); },
                       [&host = services.trayHost] { return trayOf(host); },
                       [] { return false; }}
    , m_setupModel(m_windowServices)
{
    QObject::connect(&m_settings, &SettingsStore::changed, &m_settings, [this] {
        if (m_settingsChanged) {
            m_settingsChanged();
        }
    });
}

DictationWindows::~DictationWindows() = default;

MainWindow &DictationWindows::mainWindow()
{
    if (!m_main) {
        m_main = std::make_unique<MainWindow>(m_windowServices, m_setupModel);
        installMainMenu(*m_main, [this] { openSettings(); });
        QObject::connect(m_main.get(), &MainWindow::setupWanted, m_main.get(), [this] { openSetup(); });
    }
    return *m_main;
}

void DictationWindows::openMain() { mainWindow().present(Page::home); }
void DictationWindows::openSettings() { mainWindow().present(Page::settings); }

void DictationWindows::openSetup()
{
    if (!m_setup) {
        m_setup = std::make_unique<SetupWindow>(m_windowServices, m_setupModel);
        QObject::connect(m_setup.get(), &SetupWindow::signInWanted, m_setup.get(),
                         [this] { mainWindow().presentAccount(); });
        QObject::connect(m_setup.get(), &SetupWindow::settingsWanted, m_setup.get(),
                         [this] { openSettings(); });
    }
    m_setup->present();
}

} // namespace vesk
