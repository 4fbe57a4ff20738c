#pragma once

#include "Platform/OtherPrograms.h"

namespace vesk {

/// Linux: beside the place under "Library", where the settings of Linux programs are (XDG_CONFIG_HOME).
class LinuxPrograms final : public OtherPrograms {
public:
    QStringList claudeDesktopFiles() const override;
};

} // namespace vesk
