// The main function of tests that make windows: they are laid out and used as on a screen, without one.

#include <QApplication>
#include <QStyleFactory>
#include <QTemporaryDir>

#include <cstdio>
#include <gmock/gmock.h>

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    if (!home.isValid()) {
        std::fprintf(stderr, "no temporary home: %s\n", qPrintable(home.errorString()));
        return 1;
    }
    qputenv("HOME", home.path().toLocal8Bit());
    for (const char *variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
        qunsetenv(variable);
    }
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QPA_PLATFORMTHEME", ""); // a person's own theme may bring another style
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    testing::InitGoogleMock(&argc, argv);
    const int failures = RUN_ALL_TESTS();
    const testing::UnitTest &tests = *testing::UnitTest::GetInstance();
    // A choice of cases that chooses none has found nothing.
    return failures == 0 && tests.successful_test_count() > 0 ? 0 : 1;
}
