#pragma once

#include "Platform/LoginItem.h"

#include <QString>

namespace vesk {

/// Linux: an entry in the person's autostart folder (XDG_CONFIG_HOME), which desktops read when a session
/// begins. A desktop's own settings switch the entry off by a line in it; that counts as off.
class LinuxLoginItem final : public LoginItem {
public:
    /// `program` is the absolute path of what is to be started.
    explicit LinuxLoginItem(QString program);

    Availability availability() const override;
    bool isEnabled() const override;
    void setEnabled(bool isEnabled) override;

    /// Where the entry is or would be.
    static QString file();

private:
    QString m_program;
};

} // namespace vesk
