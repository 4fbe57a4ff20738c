#pragma once

#include "Dictation/Hotkey.h"
#include "Platform/Clock.h"

#include <QPlainTextEdit>

class QLabel;

namespace vesk {

class SettingsStore;

/// A place to try the keys: says what they do while they are watched, and has a field for the words. Watches
/// only while it is visible.
class KeyTrial final : public QWidget {
    Q_OBJECT

public:
    KeyTrial(SettingsStore &settings, KeyEvents &events, const Clock &clock, QWidget *parent = nullptr);

    QPlainTextEdit *field() const { return m_field; }

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void invite();

    SettingsStore &m_settings;
    KeyEvents &m_events;
    const Clock &m_clock;
    Hotkey m_hotkey;
    Clock::Monotonic m_pressed;
    QLabel *m_status;
    QPlainTextEdit *m_field;
};

} // namespace vesk
