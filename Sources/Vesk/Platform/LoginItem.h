#pragma once

#include "Platform/Availability.h"

namespace vesk {

/// Whether the program starts when its person logs in. Blocking file access, main thread.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    virtual Availability availability() const = 0;
    /// As it stands now: the desktop's own settings change it as well.
    virtual bool isEnabled() const = 0;
    /// Throws FileError, and then nothing changed.
    virtual void setEnabled(bool isEnabled) = 0;
};

} // namespace vesk
