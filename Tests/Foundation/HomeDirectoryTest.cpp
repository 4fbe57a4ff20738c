#include "Foundation/HomeDirectory.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace vesk {

TEST(HomeDirectory, theAccountsEntryStandsInForWhatIsNoAbsolutePath)
{
    const QByteArray home = qgetenv("HOME");
    const QString accountHome = QString::fromLocal8Bit(::getpwuid(::getuid())->pw_dir);
    qputenv("HOME", "/somewhere/else/");
    EXPECT_EQ(homeDirectory(), QStringLiteral("/somewhere/else"));
    for (const char *useless : {"", "relative", "~"}) {
        qputenv("HOME", useless);
        EXPECT_EQ(homeDirectory(), accountHome) << useless;
    }
    qunsetenv("HOME");
    EXPECT_EQ(homeDirectory(), accountHome);
    qputenv("HOME", home);
}

} // namespace vesk
