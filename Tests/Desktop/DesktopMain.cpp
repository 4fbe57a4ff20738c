// The main function of a test program that needs a desktop: it gets one of its own, and every case that
// stands in it has to run.

#include "Desktop/PrivateDesktop.h"
#include "Desktop/Supervisor.h"

#include <QCoreApplication>

#include <cstdio>
#include <gmock/gmock.h>

namespace {

/// A case that is skipped, disabled or never reached has found nothing.
int runEveryCase()
{
    const int failures = RUN_ALL_TESTS();
    const testing::UnitTest &tests = *testing::UnitTest::GetInstance();
    const int ran = tests.successful_test_count() + tests.failed_test_count();
    std::printf("desktop cases: %d of %d ran\n", ran, tests.total_test_count());
    const bool isWhole = ran == tests.total_test_count();
    const bool isChosen = testing::GTEST_FLAG(filter) != "*";
    return failures == 0 && ran > 0 && (isWhole || isChosen) ? 0 : 1;
}

int runOnDesktop(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    try {
        const vesk::test::PrivateDesktop desktop;
        return runEveryCase();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "no private desktop: %s\n", error.what());
        return 1;
    }
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleMock(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    return vesk::test::supervised([&] { return runOnDesktop(argc, argv); });
}
