#pragma once

#include <QString>

#include <optional>

namespace vesk {

/// Who this computer is. Callable from any thread.
class Host {
public:
    virtual ~Host() = default;

    /// What stays the same for the life of the installation; nothing when the system has no such thing.
    virtual std::optional<QString> platformIdentifier() const = 0;

    /// The computer's name as its person knows it; nothing when it has none.
    virtual std::optional<QString> localizedName() const = 0;
};

} // namespace vesk
