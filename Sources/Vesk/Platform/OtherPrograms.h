#pragma once

#include <QStringList>

namespace vesk {

/// Where other programs keep what Vesk edits for them. Callable from any thread.
class OtherPrograms {
public:
    virtual ~OtherPrograms() = default;

    /// The places where a build of Claude Desktop for this system may keep its settings, the first being its
    /// own from of old; at least one.
    virtual QStringList claudeDesktopFiles() const = 0;
};

} // namespace vesk
