#pragma once

#include "Dictation/HistoryStore.h"
#include "MCP/MCPSetup.h"
#include "Platform/Host.h"
#include "Platform/Linux/Host/LinuxPrograms.h"
#include "Server/AccountStore.h"
#include "Server/ServerConnection.h"
#include "Support/FakeDesktop.h"
#include "Windows/SettingsStore.h"
#include "Windows/SetupModel.h"
#include "Windows/WindowServices.h"

namespace vesk::test {

/// What the windows need, with real files and a desktop of fakes: three microphones, of which a headset is
/// the default.
class WindowsRig final : private Host {
public:
    explicit WindowsRig(Clock &clock, FakeSound::Source source = FakeSound::Source::test)
        : desktop(clock, source)
        , m_clock(clock)
        , m_connection(*this)
        , account(m_connection, clock)
        , m_setup(m_programs, QStringLiteral("/opt/vesk/bin/vesk"))
    {
        desktop.sound.plug(QStringLiteral("AirPods of Maria"), AudioTransport::bluetooth);
        desktop.sound.plug(QStringLiteral("microphone in the lid"), AudioTransport::builtIn);
    }

    WindowServices services()
    {
        return {settings,
                history,
                account,
                m_setup,
                desktop,
                login,
                m_clock,
                [this](const QString &) { return model; },
                [this] { return tray; },
                [this] { return areNotificationsOff; }};
    }

    FakeDesktop desktop;
    FakeLoginItem login;
    Availability model = Availability::available();
    Availability tray = Availability::available();
    bool areNotificationsOff = false;

private:
    std::optional<QString> platformIdentifier() const override { return QStringLiteral("a test"); }
    std::optional<QString> localizedName() const override { return QStringLiteral("test"); }

    Clock &m_clock;
    ServerConnection m_connection;

public:
    SettingsStore settings;
    HistoryStore history;
    AccountStore account;

private:
    LinuxPrograms m_programs;
    MCPSetup m_setup;
};

} // namespace vesk::test
