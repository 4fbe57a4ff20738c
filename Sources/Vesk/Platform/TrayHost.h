#pragma once

#include <functional>

namespace vesk {

/// Where the desktop shows small items of programs that run all day. Panels start after programs do, crash,
/// and come back. Main thread.
class TrayHost {
public:
    enum class Kind {
        none,
        statusNotifier, ///< asks for the item's picture and menu over the bus, and draws both itself
        embedding,      ///< gives the item a window to draw in
    };

    virtual ~TrayHost() = default;

    /// What there is now; none before the desktop has answered.
    virtual Kind kind() const = 0;

    /// Called after kind() has changed, on the event loop. One handler; empty for nobody.
    virtual void setChangeHandler(std::function<void()> handler) = 0;
};

} // namespace vesk
