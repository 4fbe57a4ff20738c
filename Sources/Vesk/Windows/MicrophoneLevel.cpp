#include "Windows/MicrophoneLevel.h"

#include "Platform/DesktopServices.h"
#include "Windows/Controls.h"
#include "Windows/LevelBar.h"
#include "Windows/MicrophoneMonitor.h"
#include "Windows/SettingsStore.h"

#include <QEvent>
#include <QVBoxLayout>

namespace vesk {

MicrophoneLevel::MicrophoneLevel(SettingsStore &settings, DesktopServices &desktop, QWidget *parent)
    : QWidget(parent)
    , m_monitor(new MicrophoneMonitor(desktop.audioDevices(), desktop.audioEngines(), this))
    , m_device(new Paragraph)
    , m_bar(new LevelBar)
{
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
    for (QWidget *widget : above()) {
        widget->installEventFilter(this);
    }
    attend();
}

void MicrophoneLevel::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    for (QWidget *widget : above()) {
        widget->removeEventFilter(this);
    }
    m_monitor->setAttention(MicrophoneMonitor::Attention::nothing);
}

// A minimised window is not hidden as far as its children can tell, nor is a part of a page that was scrolled
// away.
bool MicrophoneLevel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowStateChange || event->type() == QEvent::Move
        || event->type() == QEvent::Resize) {
        attend();
    }
    return QWidget::eventFilter(watched, event);
}

QList<QWidget *> MicrophoneLevel::above() const
{
    QList<QWidget *> widgets;
    for (QWidget *widget = parentWidget(); widget != nullptr; widget = widget->parentWidget()) {
        widgets.append(widget);
    }
    return widgets;
}

void MicrophoneLevel::attend()
{
    using Attention = MicrophoneMonitor::Attention;
    const bool isShown = isVisible() && !window()->isMinimized();
    const bool isInSight = isShown && !visibleRegion().isEmpty();
    m_monitor->setAttention(isInSight ? Attention::level : isShown ? Attention::device : Attention::nothing);
}

void MicrophoneLevel::showState()
{
    const bool isHeard = m_monitor->problem().isEmpty();
    m_device->setText(isHeard ? tr("In use: %1").arg(m_monitor->deviceName()) : m_monitor->problem());
    m_bar->setVisible(isHeard);
}

} // namespace vesk
