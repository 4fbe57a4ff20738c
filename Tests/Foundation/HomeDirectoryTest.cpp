#include "Foundation/HomeDirectory.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace vesk {

namespace {

class HomeDirectoryTest : public testing::Test {
protected:
    void TearDown() override { qputenv("HOME", m_home); }

    static QString accountHome() { return QString::fromLocal8Bit(::getpwuid(::getuid())->pw_dir); }

private:
    const QByteArray m_home = qgetenv("HOME");
};

} // namespace

TEST_F(HomeDirectoryTest, theAccountsEntryStandsInForWhatIsNoAbsolutePath)
{
    qputenv("HOME", "/somewhere/else/");
    EXPECT_EQ(homeDirectory(), QStringLiteral("/somewhere/else"));
    for (const char *useless : {"", "relative", "~"}) {
        qputenv("HOME", useless);
        EXPECT_EQ(homeDirectory(), accountHome()) << useless;
    }
    qunsetenv("HOME");
    EXPECT_EQ(homeDirectory(), accountHome());
}

} // namespace vesk
