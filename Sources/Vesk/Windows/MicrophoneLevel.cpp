#include "Windows/MicrophoneLevel.h"

#include "Platform/DesktopServices.h"
#include "Windows/LevelBar.h"
#include "Windows/MicrophoneMonitor.h"
#include "Windows/SettingsStore.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace vesk {

MicrophoneLevel::MicrophoneLevel(SettingsStore &settings, DesktopServices &desktop, QWidget *parent)
    : QWidget(parent)
    , m_monitor(new MicrophoneMonitor(desktop.audioDevices(), desktop.audioEngines(), this))
    , m_device(new QLabel)
    , m_bar(new LevelBar)
{
    m_device->setWordWrap(true);
    m_bar->setAccessibleName(tr("Microphone level"));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_device);
    column->addWidget(m_bar);
    const auto follow = [this, &settings] { m_monitor->setMode(settings.config().microphone); };
    connect(&settings, &SettingsStore::changed, this, follow);
    connect(m_monitor, &MicrophoneMonitor::levelChanged, m_bar, &LevelBar::setLevel);
    connect(m_monitor, &MicrophoneMonitor::stateChanged, this, &MicrophoneLevel::showState);
    follow();
    showState();
}

void MicrophoneLevel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    window()->installEventFilter(this);
    listenIfSeen();
}

void MicrophoneLevel::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    window()->removeEventFilter(this);
    m_monitor->setActive(false);
}

// A minimised window is not hidden as far as its children can tell.
bool MicrophoneLevel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowStateChange) {
        listenIfSeen();
    }
    return QWidget::eventFilter(watched, event);
}

void MicrophoneLevel::listenIfSeen() { m_monitor->setActive(isVisible() && !window()->isMinimized()); }

void MicrophoneLevel::showState()
{
    const bool isHeard = m_monitor->problem().isEmpty();
    m_device->setText(isHeard ? tr("In use: %1").arg(m_monitor->deviceName()) : m_monitor->problem());
    m_bar->setVisible(isHeard);
}

} // namespace vesk
