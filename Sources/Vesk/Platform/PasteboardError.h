#pragma once

#include "Foundation/UserError.h"

namespace vesk {

/// The system's pasteboard could not be used.
class PasteboardError final : public SentenceError {
public:
    using SentenceError::SentenceError;
};

} // namespace vesk
