#include "Foundation/VeskError.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace vesk {

TEST(VeskError, sentencesReadAsAPersonSeesThem)
{
    const std::pair<VeskError, const char *> rows[] = {
        {VeskError::badConfig(QStringLiteral("line 3")), "config.json cannot be read: line 3"},
        {VeskError::unsupportedLocale(QStringLiteral("xx-YY")),
         "Apple's speech recognition does not support xx-YY"},
        {VeskError::selectionTooLong(4000), "The selection is over 4000 characters"},
        {VeskError::noMicrophone(), "No microphone found"},
        {VeskError::microphoneDenied(), "Vesk has no access to the microphone"},
        {VeskError::noSpeechModel(), "The speech recognition model is missing"},
        {VeskError::noSelection(), "Select text before you speak a command"},
        {VeskError::secureField(), "Commands do not work in password fields"},
        {VeskError::selectionChanged(), "The selection changed. The result is in the menu"},
        {VeskError::claudeDesktopConfig(),
         "Claude Desktop's claude_desktop_config.json is not valid JSON, so Vesk left it alone"},
    };
    for (const auto &[error, sentence] : rows) {
        EXPECT_EQ(error.errorDescription().toStdString(), sentence);
        EXPECT_STREQ(error.what(), sentence);
    }
}

TEST(VeskError, anyExceptionCanBeDescribed)
{
    EXPECT_EQ(describe(std::make_exception_ptr(VeskError::noMicrophone())),
              QStringLiteral("No microphone found"));
    EXPECT_EQ(describe(std::make_exception_ptr(std::runtime_error("größer"))), QStringLiteral("größer"));
    EXPECT_FALSE(describe(std::make_exception_ptr(42)).isEmpty());
}

} // namespace vesk
