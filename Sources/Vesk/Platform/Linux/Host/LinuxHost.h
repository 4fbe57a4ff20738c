#pragma once

#include "Platform/Host.h"

namespace vesk {

/// Linux: /etc/machine-id and the host name of the kernel.
class LinuxHost final : public Host {
public:
    /// `machineIdFile` is another file in tests.
    explicit LinuxHost(QString machineIdFile = QStringLiteral("/etc/machine-id"));

    std::optional<QString> platformIdentifier() const override;
    std::optional<QString> localizedName() const override;

    /// The path of the running program; needs no application object.
    static QString executable();

    /// Whether this session says where its display is, for X11 or Wayland.
    static bool hasDisplay();

private:
    QString m_machineIdFile;
};

} // namespace vesk
