#include "Windows/SettingsView.h"

#include "Platform/DesktopServices.h"
#include "Windows/AIAppsView.h"
#include "Windows/AccountView.h"
#include "Windows/Controls.h"
#include "Windows/HotkeyNames.h"
#include "Windows/KeyTrial.h"
#include "Windows/LoginItemBox.h"
#include "Windows/MicrophoneLevel.h"
#include "Windows/ServerAddressField.h"
#include "Windows/SettingsStore.h"

#include <QLocale>
#include <QVBoxLayout>

#include <algorithm>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// So that lines stay short enough to read on a wide screen, in widths of an "m".
constexpr int LongestLine = 56;

QList<ChoiceBox::Choice> hotkeyChoices()
{
    QList<ChoiceBox::Choice> choices;
    for (const HotkeyKey key : AllHotkeyKeys) {
        choices.append({rawValue(key), hotkeyLabel(key)});
    }
    return choices;
}

/// English as it is spoken in so many places; other languages need a model of their own.
QList<ChoiceBox::Choice> localeChoices()
{
    QList<ChoiceBox::Choice> choices;
    for (const QLatin1StringView name :
         {"en-US"_L1, "en-GB"_L1, "en-AU"_L1, "en-CA"_L1, "en-IE"_L1, "en-IN"_L1, "en-NZ"_L1, "en-ZA"_L1}) {
        const QLocale locale{QString(name)};
        choices.append({name, SettingsView::tr("English (%1)").arg(locale.nativeCountryName())});
    }
    return choices;
}

/// A sentence that shows only while it has something to say.
void keepSaying(QLabel *label, SettingsStore &settings, const std::function<QString()> &sentence)
{
    const auto say = [label, sentence] {
        label->setText(sentence());
        label->setVisible(!label->text().isEmpty());
    };
    QObject::connect(&settings, &SettingsStore::changed, label, say);
    say();
}

} // namespace

SettingsView::SettingsView(const WindowServices &services, QWidget *parent)
    : PageScroll(parent)
    , m_services(services)
{
    auto *page = new QWidget;
    auto *column = new QVBoxLayout(page);
    column->setSpacing(fontMetrics().height() * 3 / 2);
    const QList<Section *> sections = {dictation(), voiceCommands(), microphone(), notes(),
                                       aiApps(),    account(),       general()};
    int width = 0;
    for (const Section *section : sections) {
        width = std::max(width, section->nameWidth());
    }
    for (Section *section : sections) {
        section->setNameWidth(width);
        column->addWidget(section);
    }
    column->addStretch();
    const int margin = fontMetrics().height();
    column->setContentsMargins(margin, margin, margin, margin);
    page->setMaximumWidth(width + fontMetrics().horizontalAdvance(u'm') * LongestLine);
    setWidget(page);
    const auto enable = [page, this] { page->setEnabled(m_services.settings.isReadable()); };
    connect(&services.settings, &SettingsStore::problemChanged, page, enable);
    enable();
}

void SettingsView::showEvent(QShowEvent *event)
{
    PageScroll::showEvent(event);
    Q_EMIT shown();
}

void SettingsView::showAccount()
{
    ensureWidgetVisible(m_account);
    m_account->takeFocus();
}

Section *SettingsView::dictation()
{
    SettingsStore &settings = m_services.settings;
    auto *section = new Section(tr("Dictation"));
    section->add(tr("&Dictation key:"),
                 new ChoiceBox(settings, &Config::hotkey, hotkeyChoices(),
                               [](const Config &config) { return rawValue(config.dictationKey()); }));
    auto *unseen = new HintLabel;
    KeyEvents &events = m_services.desktop.keyEvents();
    keepSaying(unseen, settings, [&events, &settings] {
        return events.availability(virtualKeyCode(settings.config().dictationKey())).reason();
    });
    section->add(unseen);
    section->add(tr("&Recognition:"),
                 new ChoiceBox(settings, &Config::speech,
                               {{u"cloud"_s, tr("Cloud: Bulgarian and English")},
                                {u"mac"_s, tr("On this Mac: English only")}}),
                 tr("The cloud needs an account; without one, Vesk listens on this computer."));
    section->add(tr("&Language on this computer:"),
                 new ChoiceBox(settings, &Config::locale, localeChoices()));
    section->add(new FlagBox(tr("&Clean up what was said"), settings, &Config::cleanup),
                 tr("Leaves out fillers and sets punctuation. Needs an account."));
    section->add(new FlagBox(tr("Fit the text to the field's conte&xt"), settings, &Config::useAppContext),
                 tr("Sends the text around the cursor, the program's name and the window's title along. "
                    "Passwords never."));
    section->add(new FlagBox(tr("&Keep a history"), settings, &Config::keepHistory),
                 tr("The last 1,000 dictations, on this computer only."));
    section->add(tr("&Try it:"), new KeyTrial(settings, events, m_services.clock));
    return section;
}

Section *SettingsView::voiceCommands()
{
    SettingsStore &settings = m_services.settings;
    auto *section = new Section(tr("Voice Commands"));
    QList<ChoiceBox::Choice> choices = hotkeyChoices();
    choices.append({u"off"_s, tr("Off")});
    const auto reading = [](const Config &config) {
        // A clash keeps its choice, which the sentence below explains; a name nobody knows means off.
        return hotkeyKey(config.commandHotkey) ? config.commandHotkey : u"off"_s;
    };
    section->add(tr("Command ke&y:"), new ChoiceBox(settings, &Config::commandHotkey, choices, reading),
                 tr("Select text, hold the key and say what should become of it. Needs an account."));
    auto *clash = new Paragraph;
    keepSaying(clash, settings, [&settings] {
        const auto key = hotkeyKey(settings.config().commandHotkey);
        return key == settings.config().dictationKey()
            ? tr("Same key as dictation, so voice commands are off.")
            : QString();
    });
    section->add(clash);
    return section;
}

Section *SettingsView::microphone()
{
    SettingsStore &settings = m_services.settings;
    auto *section = new Section(tr("Microphone"));
    const auto reading = [](const Config &config) {
        return config.microphone == u"auto" ? u"auto"_s : u"system"_s;
    };
    section->add(tr("&Microphone:"),
                 new ChoiceBox(settings, &Config::microphone,
                               {{u"auto"_s, tr("Automatic")}, {u"system"_s, tr("The system's default")}},
                               reading));
    auto *meaning = new HintLabel;
    keepSaying(meaning, settings, [&settings] {
        return settings.config().microphone == u"auto" ? tr("The Mac's own when AirPods are the default")
                                                       : QString();
    });
    section->add(meaning);
    section->add(new MicrophoneLevel(settings, m_services.desktop));
    return section;
}

Section *SettingsView::notes()
{
    SettingsStore &settings = m_services.settings;
    auto *section = new Section(tr("Notes"));
    section->add(new FlagBox(tr("Record what the computer &plays"), settings, &Config::recordCallAudio),
                 tr("So that notes of a call hold the others as well."));
    section->add(new FlagBox(tr("Remind me of mee&tings"), settings, &Config::meetingReminders),
                 tr("A minute before each, with a button to record."));
    auto *off = new Paragraph;
    const auto say = [off, isOff = m_services.notificationsOff] {
        off->setText(tr("Notifications for Vesk are off in System Settings > Notifications."));
        off->setVisible(isOff());
    };
    connect(this, &SettingsView::shown, off, say); // the system's settings tell of nothing
    say();
    section->add(off);
    return section;
}

Section *SettingsView::aiApps()
{
    auto *section = new Section(tr("AI Apps"));
    section->add(new AIAppsView(m_services.mcpSetup, m_services.desktop.pasteboard()));
    return section;
}

Section *SettingsView::account()
{
    auto *section = new Section(tr("Account"));
    m_account = new AccountView(m_services.account);
    section->add(m_account);
    section->add(tr("&Server:"), new ServerAddressField(m_services.settings, m_services.account),
                 tr("For people who run their own. Another server ends the sign-in."));
    return section;
}

Section *SettingsView::general()
{
    auto *section = new Section(tr("General"));
    section->add(new LoginItemBox(m_services.loginItem));
    return section;
}

} // namespace vesk
