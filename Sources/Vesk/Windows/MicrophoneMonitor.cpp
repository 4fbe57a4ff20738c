#include "Windows/MicrophoneMonitor.h"

#include "Dictation/Microphone.h"
#include "Foundation/UserError.h"
#include "Foundation/VeskError.h"

namespace vesk {

MicrophoneMonitor::MicrophoneMonitor(const AudioDevices &devices, AudioEngines &engines, QObject *parent)
    : QObject(parent)
    , m_devices(devices)
    , m_engines(engines)
    , m_level([this](float level) {
        if (m_attention == Attention::level) {
            Q_EMIT levelChanged(level);
        }
    })
{
    m_timer.setInterval(std::chrono::seconds(1));
    connect(&m_timer, &QTimer::timeout, this, &MicrophoneMonitor::followDevices);
}

MicrophoneMonitor::~MicrophoneMonitor() = default;

void MicrophoneMonitor::setMode(const QString &mode)
{
    if (m_mode != mode) {
        m_mode = mode;
        if (m_attention != Attention::nothing) {
            start();
        }
    }
}

void MicrophoneMonitor::setAttention(Attention attention)
{
    if (m_attention == attention) {
        return;
    }
    const bool wasHeard = m_attention == Attention::level;
    m_attention = attention;
    if (wasHeard) {
        stop();
        Q_EMIT levelChanged(0);
    }
    if (attention == Attention::nothing) {
        m_timer.stop();
    } else {
        m_timer.start();
        start();
    }
}

void MicrophoneMonitor::start()
{
    const QString device = wantedDevice();
    if (device.isEmpty()) {
        const Availability sound = m_devices.availability();
        setState({}, sound.isAvailable() ? VeskError::noMicrophone().errorDescription() : sound.reason());
        stop();
        Q_EMIT levelChanged(0);
        return;
    }
    setState(device, {});
    if (m_attention != Attention::level) {
        return;
    }
    if (!m_input) {
        m_input = std::make_unique<AudioInput>(m_devices, m_engines);
        m_control = std::make_unique<SerialQueue>("vesk.level");
    }
    m_control->async([this, mode = m_mode, level = m_level.sender()] {
        try {
            m_input->start(mode, [level](const AudioBlock &, float loudness) { level(loudness); });
        } catch (const std::exception &error) {
            QMetaObject::invokeMethod(
                this,
                [this, reason = describe(error)] {
                    if (m_attention == Attention::level) {
                        setState({}, reason);
                    }
                },
                Qt::QueuedConnection);
        }
    });
}

// Behind a start that is still under way.
void MicrophoneMonitor::stop()
{
    if (m_control) {
        m_control->async([input = m_input.get()] { input->stop(); });
    }
}

void MicrophoneMonitor::followDevices()
{
    if (wantedDevice() != m_deviceName || !m_problem.isEmpty()) {
        start();
    }
}

QString MicrophoneMonitor::wantedDevice() const
{
    auto device = Microphone::preferred(m_mode, m_devices);
    device = device ? device : m_devices.defaultInput();
    return device ? m_devices.name(*device).value_or(QStringLiteral("?")) : QString();
}

void MicrophoneMonitor::setState(const QString &deviceName, const QString &problem)
{
    if (m_deviceName != deviceName || m_problem != problem) {
        m_deviceName = deviceName;
        m_problem = problem;
        Q_EMIT stateChanged();
    }
}

} // namespace vesk
