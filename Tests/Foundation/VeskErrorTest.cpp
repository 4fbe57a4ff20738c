#include "Foundation/VeskError.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace vesk {

TEST(VeskError, anyExceptionCanBeDescribed)
{
    EXPECT_EQ(describe(std::make_exception_ptr(VeskError::noMicrophone())),
              QStringLiteral("No microphone found"));
    EXPECT_EQ(describe(std::make_exception_ptr(std::runtime_error("größer"))), QStringLiteral("größer"));
    EXPECT_FALSE(describe(std::make_exception_ptr(42)).isEmpty());
}

} // namespace vesk
