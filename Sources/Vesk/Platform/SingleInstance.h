#pragma once

#include <functional>

namespace vesk {

/// The application runs once on a desktop: two would both type what was said. Main thread.
class SingleInstance {
public:
    enum class Claim {
        first,   ///< this process is the application
        second,  ///< another one is, and has been asked to show itself
        stuck,   ///< another one is, and does not answer
        unknown, ///< the desktop has no means to tell; the sentence is in the log
    };

    virtual ~SingleInstance() = default;

    /// `activated` is called on the event loop when the program was started once more.
    virtual Claim claim(std::function<void()> activated) = 0;
};

} // namespace vesk
