#pragma once

#include "Platform/Compositing.h"
#include "Platform/Linux/X11/XcbConnection.h"

namespace vesk {

/// On X11 a compositor owns a selection that is named after its screen. Asking costs one round trip.
class X11Compositing final : public Compositing {
public:
    bool isActive() const override;

private:
    mutable XcbConnection m_connection;
};

} // namespace vesk
