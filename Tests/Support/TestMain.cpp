// The main function of every test program: a home of its own, so that no test reads or writes a file of the
// person who runs it, and an event loop for what is asynchronous.

#include <QCoreApplication>
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
    QCoreApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
