#pragma once

namespace vesk {

/// Whether translucent windows are drawn so. Where nobody composes the windows of the desktop, what is
/// translucent is black. Main thread; may change at any time and is answered at once.
class Compositing {
public:
    virtual ~Compositing() = default;

    virtual bool isActive() const = 0;
};

} // namespace vesk
