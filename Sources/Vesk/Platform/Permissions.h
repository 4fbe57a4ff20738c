#pragma once

#include "Platform/Availability.h"

namespace vesk {

/// What the person or the system has to allow before dictation works. Main thread; asked at every press, so
/// the answers come at once.
class Permissions {
public:
    virtual ~Permissions() = default;

    /// Whether keys can be seen and pressed in other programs.
    virtual Availability accessibility() const = 0;

    /// Whether sound may be recorded. A computer without any microphone allows it: that is another failure.
    virtual Availability microphone() const = 0;
};

} // namespace vesk
