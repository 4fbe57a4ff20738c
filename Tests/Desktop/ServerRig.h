#pragma once

#include "Desktop/SoundServer.h"
#include "Platform/Linux/Sound/PulseSound.h"
#include "Support/SoundRig.h"

namespace vesk::test {

/// A real sound server with our answer on it.
class ServerRig final : public SoundRig {
public:
    explicit ServerRig(SoundServer::Kind kind);

    SoundServer &server() { return m_server; }
    const AudioDevices &devices() override { return m_sound.audioDevices(); }
    AudioEngines &engines() override { return m_sound.audioEngines(); }
    void plug(const QString &name, AudioTransport transport = AudioTransport::other) override;
    void unplug(const QString &name) override { m_server.removeMicrophone(name); }
    void makeDefault(const QString &name) override { m_server.setDefaultMicrophone(name); }
    void sound(const QString &device, double frequency) override;
    void endServer() override;
    void startServer() override { m_server.start(); }
    void freezeServer() override { m_server.freeze(); }
    void thawServer() override { m_server.thaw(); }

private:
    QTemporaryDir m_folder;
    SoundServer m_server;
    PulseSound m_sound;
    std::map<QString, std::unique_ptr<Process>> m_players; ///< of each device
};

} // namespace vesk::test
