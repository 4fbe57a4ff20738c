#pragma once

#include "Desktop/Process.h"

namespace vesk::test {

using namespace Qt::StringLiterals;

/// A panel that another library drives; see Peers/tray_host.py.
class TrayPeer {
public:
    TrayPeer()
        : m_process(u"/usr/bin/python3"_s, QStringList{QStringLiteral(VESK_TEST_PEERS "/tray_host.py")})
    {
        m_process.readLine();
    }

    QString ask(const QString &command)
    {
        m_process.write(command.toUtf8() + '\n');
        return QString::fromUtf8(m_process.readLine(std::chrono::seconds(60)));
    }

    void kill() { m_process.kill(); }

private:
    Process m_process;
};

} // namespace vesk::test
