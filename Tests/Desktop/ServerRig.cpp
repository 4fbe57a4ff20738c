#include "Desktop/ServerRig.h"

#include "Support/Tones.h"
#include "Support/WavFile.h"

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace vesk::test {

namespace {

/// What real devices of the kind say about themselves.
QString properties(AudioTransport transport)
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

} // namespace

ServerRig::ServerRig(SoundServer::Kind kind)
    : m_server(kind)
    , m_sound(m_server.address())
{
}

void ServerRig::plug(const QString &name, AudioTransport transport)
{
    m_server.addMicrophone({.name = name, .properties = properties(transport)});
}

void ServerRig::sound(const QString &device, double frequency)
{
    constexpr int Seconds = 60; // longer than any case waits
    const QString file = m_folder.filePath(QString::number(frequency) + u".wav"_s);
    if (!QFile::exists(file) && !writeWav(file, tone({48'000, 1}, frequency, 48'000 * Seconds))) {
        throw std::runtime_error("the tone could not be written");
    }
    m_players[device].reset(); // the old one ends first
    m_players[device] = m_server.play(file, device);
}

void ServerRig::endServer()
{
    m_players.clear();
    m_server.kill();
}

} // namespace vesk::test
