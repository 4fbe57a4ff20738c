#pragma once

#include <QWidget>

class QLabel;

namespace vesk {

class DesktopServices;
class LevelBar;
class MicrophoneMonitor;
class SettingsStore;

/// The microphone in use and how loud it is. Listens only while it can be seen.
class MicrophoneLevel final : public QWidget {
    Q_OBJECT

public:
    MicrophoneLevel(SettingsStore &settings, DesktopServices &desktop, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showState();
    void attend();
    QList<QWidget *> above() const;

    MicrophoneMonitor *m_monitor;
    QLabel *m_device;
    LevelBar *m_bar;
};

} // namespace vesk
