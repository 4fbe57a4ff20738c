#pragma once

#include "Desktop/SoundServer.h"
#include "Platform/Linux/Sound/PulseSound.h"
#include "Support/SoundRig.h"
#include "Support/Tones.h"

namespace vesk::test {

using namespace Qt::StringLiterals;

/// A real sound server with our answer on it.
class ServerRig final : public SoundRig {
public:
    explicit ServerRig(SoundServer::Kind kind)
        : m_server(kind)
        , m_sound(m_server.address())
    {
    }

    SoundServer &server() { return m_server; }
    const AudioDevices &devices() override { return m_sound.audioDevices(); }
    AudioEngines &engines() override { return m_sound.audioEngines(); }
    void plug(const QString &name, AudioTransport transport = AudioTransport::other) override
    {
        m_server.addMicrophone({.name = name, .properties = properties(transport)});
    }
    void unplug(const QString &name) override { m_server.removeMicrophone(name); }
    void makeDefault(const QString &name) override { m_server.setDefaultMicrophone(name); }
    void sound(const QString &device, double frequency) override
    {
        constexpr int Seconds = 60; // longer than any case waits
        const QString file = m_folder.filePath(QString::number(frequency) + u".wav"_s);
        if (!QFile::exists(file) && !writeWav(file, tone({48'000, 1}, frequency, 48'000 * Seconds))) {
            throw std::runtime_error("the tone could not be written");
        }
        m_players[device].reset(); // the old one ends first
        m_players[device] = m_server.play(file, device);
    }
    void endServer() override
    {
        m_players.clear();
        m_server.kill();
    }
    void startServer() override { m_server.start(); }
    void freezeServer() override { m_server.freeze(); }
    void thawServer() override { m_server.thaw(); }

private:
    /// What real devices of the kind say about themselves.
    static QString properties(AudioTransport transport)
    {
        switch (transport) {
        case AudioTransport::builtIn: return u"device.bus=pci device.form_factor=internal device.api=alsa"_s;
        case AudioTransport::bluetooth:
            return u"device.bus=bluetooth device.form_factor=headset device.api=bluez"_s;
        case AudioTransport::bluetoothLowEnergy:
            return u"device.bus=bluetooth device.api=bluez5 api.bluez5.profile=bap-duplex"_s;
        case AudioTransport::other: return u"device.bus=usb device.form_factor=webcam device.api=alsa"_s;
        }
        Q_UNREACHABLE();
    }

    QTemporaryDir m_folder;
    SoundServer m_server;
    PulseSound m_sound;
    std::map<QString, std::unique_ptr<Process>> m_players; ///< of each device
};

} // namespace vesk::test
