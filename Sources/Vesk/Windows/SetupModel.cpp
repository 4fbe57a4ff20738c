#include "Windows/SetupModel.h"

#include "Dictation/Microphone.h"
#include "Foundation/VeskError.h"
#include "Platform/DesktopServices.h"
#include "Server/AccountStore.h"
#include "Windows/HotkeyNames.h"
#include "Windows/SettingsStore.h"

#include <algorithm>

namespace vesk {

namespace {

using Kind = Requirement::Kind;
using State = Requirement::State;
using Help = Requirement::Help;

/// A model that is there is files on a disk, which hardly ever go: every so many looks, ten seconds apart.
constexpr int LooksBetweenModels = 20;

/// A service that dictation cannot do without, or can.
Requirement service(Kind kind, const Availability &availability, const QString &whenMet,
                    State otherwise = State::missing)
{
    return availability.isAvailable() ? Requirement{kind, State::met, whenMet, Help::none}
                                      : Requirement{kind, otherwise, availability.reason(), Help::none};
}

} // namespace

SetupModel::SetupModel(const WindowServices &services, QObject *parent)
    : QObject(parent)
    , m_services(services)
{
    m_timer.setInterval(std::chrono::milliseconds(500));
    connect(&m_timer, &QTimer::timeout, this, &SetupModel::lookAgain);
    connect(&services.settings, &SettingsStore::changed, this, &SetupModel::refresh);
    connect(&services.account, &AccountStore::accountChanged, this, &SetupModel::refresh);
    refresh();
}

bool SetupModel::isReady()
{
    refresh();
    return std::ranges::none_of(
        m_requirements, [](const Requirement &requirement) { return requirement.state == State::missing; });
}

void SetupModel::setWatching(bool isWatching)
{
    m_watchers = std::max(0, m_watchers + (isWatching ? 1 : -1));
    if (m_watchers == 0) {
        m_timer.stop();
    } else if (!m_timer.isActive()) {
        refresh();
        m_timer.start();
    }
}

void SetupModel::useRightCommand()
{
    m_services.settings.change([](Config &config) {
        const QString command = rawValue(HotkeyKey::rightCommand);
        if (config.commandHotkey == command) {
            config.commandHotkey = rawValue(config.dictationKey());
        }
        config.hotkey = command;
    });
}

QString SetupModel::title(Requirement::Kind kind)
{
    switch (kind) {
    case Kind::microphone: return tr("Microphone");
    case Kind::keyboard: return tr("Keyboard");
    case Kind::dictationKey: return tr("Dictation key");
    case Kind::clipboard: return tr("Clipboard");
    case Kind::speech: return tr("Speech recognition");
    case Kind::account: return tr("Account");
    case Kind::fields: return tr("Text fields");
    case Kind::tray: return tr("Menu bar icon");
    }
    Q_UNREACHABLE();
}

void SetupModel::refresh()
{
    askForSpeechModel();
    compare();
}

void SetupModel::lookAgain()
{
    if (!m_speechModel.isAvailable() || ++m_looks % LooksBetweenModels == 0) {
        askForSpeechModel();
    }
    compare();
}

void SetupModel::askForSpeechModel()
{
    if (!usesCloud()) {
        m_speechModel = m_services.speechModel(m_services.settings.config().locale);
    }
}

bool SetupModel::usesCloud() const
{
    return m_services.settings.config().speech == u"cloud" && m_services.account.account();
}

void SetupModel::compare()
{
    DesktopServices &desktop = m_services.desktop;
    QList<Requirement> now = {
        microphone(),
        service(Kind::keyboard, desktop.permissions().accessibility(),
                tr("Vesk sees its keys and can type into other programs.")),
        dictationKey(),
        service(Kind::clipboard, desktop.pasteboard().availability(),
                tr("Text is inserted with it; what you had copied comes back.")),
        speech(),
        account(),
        service(Kind::fields, desktop.accessibility().availability(),
                tr("Vesk sees what stands around the cursor, so that the text fits in."), State::advised),
        service(Kind::tray, m_services.tray(), tr("Vesk is there while no window is open."), State::advised),
    };
    if (now != m_requirements) {
        m_requirements = std::move(now);
        Q_EMIT changed();
    }
}

Requirement SetupModel::microphone() const
{
    const AudioDevices &devices = m_services.desktop.audioDevices();
    for (const Availability &answer :
         {devices.availability(), m_services.desktop.permissions().microphone()}) {
        if (!answer.isAvailable()) {
            return {Kind::microphone, State::missing, answer.reason(), Help::none};
        }
    }
    auto device = Microphone::preferred(m_services.settings.config().microphone, devices);
    device = device ? device : devices.defaultInput();
    if (!device) {
        return {Kind::microphone, State::missing, VeskError::noMicrophone().errorDescription(), Help::none};
    }
    return {Kind::microphone, State::met, devices.name(*device).value_or(tr("Ready")), Help::none};
}

Requirement SetupModel::dictationKey() const
{
    const HotkeyKey key = m_services.settings.config().dictationKey();
    const KeyEvents &events = m_services.desktop.keyEvents();
    const Availability seen = events.availability(virtualKeyCode(key));
    // A keyboard that cannot be seen at all is a row of its own.
    if (!seen.isAvailable() && events.availability().isAvailable()) {
        return {Kind::dictationKey, State::missing, seen.reason(), Help::chooseKey};
    }
    if (key != HotkeyKey::rightCommand && events.typesCharacters(virtualKeyCode(key))) {
        return {
            Kind::dictationKey, State::advised,
            tr("This keyboard layout uses %1 to type further characters (AltGr). Dictation works with it, "
               "but another key is out of the way.")
                .arg(hotkeyLabel(key)),
            Help::useRightCommand};
    }
    return {Kind::dictationKey, State::met, tr("Hold %1 and speak.").arg(hotkeyLabel(key)), Help::none};
}

Requirement SetupModel::speech() const
{
    if (usesCloud()) {
        return {Kind::speech, State::met, tr("Cloud: Bulgarian and English"), Help::none};
    }
    return service(Kind::speech, m_speechModel, tr("On this Mac: English only"));
}

Requirement SetupModel::account() const
{
    if (const auto &account = m_services.account.account()) {
        return {Kind::account, State::met, tr("Signed in as %1").arg(account->email), Help::none};
    }
    return {
        Kind::account, State::advised,
        tr("Without an account, dictation is in English and as it was heard. Clean-up, Bulgarian and voice "
           "commands need one."),
        Help::signIn};
}

} // namespace vesk
