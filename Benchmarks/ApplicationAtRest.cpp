// What the application costs while nobody dictates, on a private desktop: the time from its start to its item
// in the panel and to a loaded model, its memory without and with the model, and then the processor time and
// the wake-ups of so many minutes.
//
//   vesk_application_at_rest [LAUNCHES] [MINUTES]

#include "Desktop/ShippedApplication.h"
#include "Desktop/TrayPeer.h"
#include "DesktopProgram.h"
#include "Foundation/Config.h"
#include "ProcessFigures.h"
#include "Server/AccountFile.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>

namespace {

using namespace vesk;
using namespace Qt::StringLiterals;
using Milliseconds = std::chrono::duration<double, std::milli>;
using Clock = std::chrono::steady_clock;

constexpr auto Settling = std::chrono::seconds(5);

double since(Clock::time_point start) { return Milliseconds(Clock::now() - start).count(); }

void print(const char *what, std::vector<double> times)
{
    std::ranges::sort(times);
    std::printf("%s: median %.0f ms, worst %.0f ms (%zu launches)\n", what, times[times.size() / 2],
                times.back(), times.size());
}

void configure(const QString &locale)
{
    Config config;
    config.speech = u"mac"_s;
    config.cleanup = false;
    config.locale = locale;
    config.write();
    AccountFile::remove();
}

void measure(const QString &program, int launches, int minutes)
{
    test::TrayPeer tray;
    configure(u"en-US"_s);
    std::vector<double> items;
    std::vector<double> models;
    test::ShippedApplication application(program);
    for (int i = 0; i < launches; ++i) {
        application.kill();
        tray.ask(u"gone"_s);
        const auto start = Clock::now();
        application.launch();
        tray.ask(u"item"_s);
        items.push_back(since(start));
        application.waitForModel();
        models.push_back(since(start));
    }
    print("launch -> item in the panel", items);
    print("launch -> model ready", models);
    application.kill();
    configure(u"xx"_s); // no model speaks it, so none is loaded
    application.launch();
    test::pause(Settling);
    std::printf("memory without a model: %.0f MiB\n", ProcessFigures::memory(application.processId()));
    application.kill();
    configure(u"en-US"_s);
    application.start();
    test::pause(Settling);
    std::printf("memory with the model: %.0f MiB\n", ProcessFigures::memory(application.processId()));
    const double processor = ProcessFigures::processorTime(application.processId());
    const QHash<QString, qint64> wakeUps = ProcessFigures::wakeUps(application.processId());
    const auto start = Clock::now();
    test::pause(std::chrono::minutes(minutes));
    const double seconds = since(start) / 1000;
    std::printf("at rest for %.0f s: %.3f %% processor, %.2f wake-ups a second\n", seconds,
                100 * (ProcessFigures::processorTime(application.processId()) - processor) / seconds,
                static_cast<double>(ProcessFigures::wakeUpsSince(wakeUps, application.processId()))
                    / seconds);
}

} // namespace

int main(int argc, char **argv)
{
    return test::runOnPrivateDesktop(argc, argv, [](const QStringList &arguments) {
        measure(QCoreApplication::applicationDirPath() + u"/vesk",
                std::max(1, arguments.value(0, u"20"_s).toInt()),
                std::max(1, arguments.value(1, u"10"_s).toInt()));
        return 0;
    });
}
