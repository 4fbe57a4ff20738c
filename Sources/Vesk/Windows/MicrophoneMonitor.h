#pragma once

#include "Dictation/AudioInput.h"
#include "Dictation/LevelRelay.h"

#include <QObject>
#include <QTimer>

#include <memory>

namespace vesk {

/// Listens to the microphone that a dictation would record, for a level meter. It records only while the
/// level is looked at, keeps nothing, and follows devices that come and go. Main thread; the services must
/// outlive it. Its end waits for a start that is under way.
class MicrophoneMonitor final : public QObject {
    Q_OBJECT

public:
    /// What somebody looks at.
    enum class Attention { nothing, device, level };

    MicrophoneMonitor(const AudioDevices &devices, AudioEngines &engines, QObject *parent = nullptr);
    ~MicrophoneMonitor() override;

    /// The microphone mode of the settings.
    void setMode(const QString &mode);
    void setAttention(Attention attention);

    /// The device in use; empty when there is none.
    const QString &deviceName() const { return m_deviceName; }
    /// Why there is no level; empty when there is one.
    const QString &problem() const { return m_problem; }

Q_SIGNALS:
    /// Loudness of the newest block, 0..1.
    void levelChanged(float level);
    void stateChanged();

private:
    void start();
    void stop();
    void followDevices();
    QString wantedDevice() const;
    void setState(const QString &deviceName, const QString &problem);

    const AudioDevices &m_devices;
    AudioEngines &m_engines;
    LevelRelay m_level;
    QString m_mode = QStringLiteral("auto");
    Attention m_attention = Attention::nothing;
    QString m_deviceName;
    QString m_problem;
    QTimer m_timer;
    std::unique_ptr<AudioInput> m_input;    ///< made at the first use: it has a thread, as its control has
    std::unique_ptr<SerialQueue> m_control; ///< last: a start under way ends before what it uses
};

} // namespace vesk
