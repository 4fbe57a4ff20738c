#include "DesktopProgram.h"

#include "Desktop/Supervisor.h"

#include <QCoreApplication>

#include <cstdio>

namespace vesk::test {

int runOnPrivateDesktop(int argc, char **argv, const std::function<int(const QStringList &)> &body,
                        const QString &screen)
{
    return supervised([=] {
        int count = argc;
        const QCoreApplication application(count, argv);
        try {
            const PrivateDesktop desktop(screen);
            return body(QCoreApplication::arguments().mid(1));
        } catch (const std::exception &error) {
            std::fprintf(stderr, "%s\n", error.what());
            return 1;
        }
    });
}

} // namespace vesk::test
