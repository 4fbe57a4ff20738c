#include "Windows/KeyTrial.h"

#include "Windows/Controls.h"
#include "Windows/HotkeyNames.h"
#include "Windows/SettingsStore.h"

#include <QLocale>
#include <QVBoxLayout>

namespace vesk {

KeyTrial::KeyTrial(SettingsStore &settings, KeyEvents &events, const Clock &clock, QWidget *parent)
    : QWidget(parent)
    , m_settings(settings)
    , m_events(events)
    , m_clock(clock)
    , m_hotkey(events, [&settings] { return settings.config().watchedKeys(); })
    , m_status(new Paragraph)
    , m_field(new QPlainTextEdit)
{
    m_field->setAccessibleName(tr("Try it here"));
    m_field->setPlaceholderText(tr("Click here, hold the key and speak: the words appear here."));
    m_field->setTabChangesFocus(true);
    setFocusProxy(m_field);
    m_field->setFixedHeight(m_field->fontMetrics().lineSpacing() * 3 + 16);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_field);
    column->addWidget(m_status);

    m_hotkey.onPress = [this](HotkeyKey key) {
        m_pressed = m_clock.monotonic();
        m_status->setText(
            key == m_settings.config().dictationKey()
                ? tr("%1 is down: speak.").arg(hotkeyLabel(key))
                : tr("%1 is down: say what should become of the selected text.").arg(hotkeyLabel(key)));
    };
    m_hotkey.onRelease = [this](HotkeyKey key) {
        const std::chrono::duration<double> held = m_clock.monotonic() - m_pressed;
        m_status->setText(tr("%1 was held for %2 seconds.")
                              .arg(hotkeyLabel(key), QLocale().toString(held.count(), 'f', 1)));
    };
    m_hotkey.onOtherKey = [this] {
        m_status->setText(tr("Another key came in between, so nothing is heard."));
    };
    connect(&settings, &SettingsStore::changed, this, &KeyTrial::invite);
    invite();
}

void KeyTrial::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_hotkey.start();
    invite();
}

void KeyTrial::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_hotkey.stop();
}

void KeyTrial::invite()
{
    const HotkeyKey key = m_settings.config().dictationKey();
    const Availability seen = m_events.availability(virtualKeyCode(key));
    m_status->setText(seen.isAvailable() ? tr("Hold %1 and speak.").arg(hotkeyLabel(key)) : seen.reason());
}

} // namespace vesk
