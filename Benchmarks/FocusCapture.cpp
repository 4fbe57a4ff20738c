// How long it takes to read the focused field of different programs: vesk_focus_capture [REPETITIONS]
// Median and 95th percentile in milliseconds, from the question to the whole context, with the limits of the
// product.

#include "Desktop/AccessibilityFixture.h"
#include "Desktop/Supervisor.h"

#include <QCoreApplication>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

using namespace vesk;
using namespace vesk::test;
using Time = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr std::chrono::milliseconds Pause(20); // nobody presses the key again at once

FocusContext captureOnce(LinuxAccessibility &accessibility)
{
    return awaited(FocusCapture::capture(accessibility, SelectionLimit)).value_or(FocusContext());
}

void measure(LinuxAccessibility &accessibility, const char *name, int repetitions)
{
    std::vector<double> took;
    qsizetype characters = 0;
    for (int i = 0; i < repetitions; ++i) {
        const auto start = Time::now();
        const FocusContext context = captureOnce(accessibility);
        took.push_back(Milliseconds(Time::now() - start).count());
        characters =
            context.textBefore.value_or(QString()).size() + context.textAfter.value_or(QString()).size();
        eventually([end = Time::now() + Pause] { return Time::now() > end; });
    }
    std::ranges::sort(took);
    std::printf("| %-32s | %6.1f | %6.1f | %6.1f | %5lld |\n", name, took[took.size() / 2],
                took[took.size() * 95 / 100], took.back(), static_cast<long long>(characters));
    std::fflush(stdout);
}

int measureAll(int repetitions)
{
    Screen screen;
    LinuxAccessibility accessibility;
    if (!eventually([&] { return accessibility.isReady(); }, std::chrono::seconds(20))) {
        std::fprintf(stderr, "no accessibility bus\n");
        return 1;
    }
    const QString text = QStringLiteral("The quick brown fox jumps over the lazy dog.\n").repeated(80);
    const int cursor = 2000;
    const Selected there{cursor, cursor};
    const std::pair<const char *, std::function<std::unique_ptr<Peer>()>> programs[] = {
        {"mousepad (GTK 3)", [&] { return startMousepad(screen, text); }},
        {"mousepad, 2,000,000 characters",
         [&] { return startMousepad(screen, QStringLiteral("0123456789abcdefghi\n").repeated(100000)); }},
        {"Qt 6 text edit", [&] { return startQt(screen, QStringLiteral("area"), text, there); }},
        {"Chromium text area", [&] { return startChromium(screen, QStringLiteral("area"), text, there); }},
        {"Chromium, paragraphs",
         [&] {
             return startChromium(screen, QStringLiteral("rich"),
                                  QStringLiteral("<p>First</p><p>Second line</p>"), {1, 6});
         }},
        {"GTK 4 text view", [&] { return startGtk(screen, 4, QStringLiteral("area"), text, there); }},
        {"GTK 4 entry",
         [&] { return startGtk(screen, 4, QStringLiteral("entry"), QStringLiteral("Subject line")); }},
    };
    std::printf("| %-32s | %6s | %6s | %6s | %5s |\n|---|---|---|---|---|\n", "program", "median", "p95",
                "worst", "chars");
    for (const auto &[name, start] : programs) {
        const auto peer = start();
        const bool hasText = eventually([&] { return captureOnce(accessibility).textBefore.has_value(); },
                                        std::chrono::seconds(30));
        measure(accessibility, hasText ? name : "(no field)", repetitions);
    }
    const auto editor = startMousepad(screen, text);
    editor->process().signal(SIGSTOP);
    measure(accessibility, "mousepad, stopped", std::min(repetitions, 20));
    editor->process().signal(SIGCONT);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const int repetitions = argc > 1 ? std::max(1, std::atoi(argv[1])) : 100;
    return supervised([&] {
        QCoreApplication application(argc, argv);
        try {
            const PrivateDesktop desktop;
            return measureAll(repetitions);
        } catch (const std::exception &error) {
            std::fprintf(stderr, "%s\n", error.what());
            return 1;
        }
    });
}
