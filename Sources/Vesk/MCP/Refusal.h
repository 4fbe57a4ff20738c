#pragma once

#include "Foundation/UserError.h"

namespace vesk {

/// How a tool says no: its sentence is for the AI application that called it.
class Refusal final : public SentenceError {
public:
    using SentenceError::SentenceError;
};

} // namespace vesk
