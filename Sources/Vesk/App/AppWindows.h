#pragma once

#include <functional>

namespace vesk {

/// The windows that the menu opens. Main thread.
class AppWindows {
public:
    virtual ~AppWindows() = default;

    /// Called after the settings have changed, here or by hand. One handler; empty for nobody.
    virtual void setSettingsHandler(std::function<void()> handler) = 0;

    virtual void openMain() = 0;
    virtual void openSettings() = 0;
    virtual void openSetup() = 0;

    /// Whether nothing stands between the person and a first dictation.
    virtual bool isSetupComplete() = 0;
};

} // namespace vesk
