#include <QApplication>
#include <QTemporaryDir>

#include <gmock/gmock.h>

/// As Support/TestMain.cpp, with widgets.
int main(int argc, char **argv)
{
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleMock(&argc, argv);
    return home.isValid() ? RUN_ALL_TESTS() : 1;
}
