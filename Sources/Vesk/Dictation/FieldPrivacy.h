#pragma once

#include "Foundation/Config.h"
#include "Foundation/FocusContext.h"

#include <optional>

namespace vesk {

/// Nothing of a password field is kept, and nothing that is said into it leaves the computer.
inline bool isSecure(const std::optional<FocusContext> &context) { return context && context->isSecure; }

/// What the server is told of the field; nothing when the person does not want it to know.
inline std::optional<FocusContext> sent(const std::optional<FocusContext> &context, const Config &config)
{
    return config.useAppContext ? context : std::nullopt;
}

} // namespace vesk
