// How long after the call of paste() its text can be read in the field of a real editor, on a private
// desktop. The reader is a program of its own, told of the insertion by the editor. Each paste begins when
// the clipboard has been given back, so that each takes its own snapshot of it. Arguments: the number of
// pastes (100).

#include "Desktop/Peer.h"
#include "DesktopProgram.h"
#include "Dictation/Inserter.h"
#include "Dictation/PasteboardLoan.h"
#include "Platform/Linux/Keys/InjectedKeys.h"
#include "Platform/Linux/Keys/XTestKeyPoster.h"
#include "Platform/Linux/Pasteboard/X11Pasteboard.h"
#include "Platform/Qt/SystemClock.h"
#include "Support/Await.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

using namespace vesk;
using Milliseconds = std::chrono::duration<double, std::milli>;

struct Times {
    std::vector<double> pressed;  ///< until the keys were down and up
    std::vector<double> readable; ///< until the text was read back
};

Times measure(int count)
{
    test::Screen screen;
    const auto editor = test::startMousepad(screen);
    test::Process reader(
        QStringLiteral("/usr/bin/python3"),
        {{QStringLiteral(VESK_TEST_PEERS "/insertion_times.py"), QString::number(editor->process().id())},
         QProcess::SeparateChannels,
         {},
         {}});
    reader.readLine();
    SystemClock clock;
    InjectedKeys injected;
    X11Pasteboard pasteboard;
    XTestKeyPoster keys(injected, clock);
    PasteboardLoan loan(pasteboard, clock);
    Times times;
    for (int i = 0; i < count; ++i) {
        const QString text = QStringLiteral("paste %1. ").arg(i);
        const auto start = std::chrono::steady_clock::now();
        awaited(Inserter::paste(loan, keys, text));
        times.pressed.push_back(Milliseconds(std::chrono::steady_clock::now() - start).count());
        const qint64 pasted = pasteboard.changeCount(PasteboardName::general);
        QByteArray line;
        do {
            line = reader.readLine();
        } while (!line.endsWith(text.trimmed().toUtf8()));
        const std::chrono::nanoseconds read(line.left(line.indexOf(' ')).toLongLong());
        times.readable.push_back(Milliseconds(read - start.time_since_epoch()).count());
        eventually([&] { return pasteboard.changeCount(PasteboardName::general) > pasted; });
    }
    return times;
}

void print(const char *what, std::vector<double> values)
{
    std::ranges::sort(values);
    const auto at = [&values](double share) {
        return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
    };
    std::printf("%-22s median %6.1f ms   p95 %6.1f ms   worst %6.1f ms   (%zu pastes)\n", what, at(0.5),
                at(0.95), values.back(), values.size());
}

int run(const QStringList &arguments)
{
    // Something to give back, by an owner that answers as programs do.
    test::run(
        QStringLiteral("sh"),
        {QStringLiteral("-c"), QStringLiteral("echo mine | xclip -i -selection clipboard >/dev/null 2>&1")});
    const Times times = measure(std::max(1, arguments.value(0, QStringLiteral("100")).toInt()));
    print("paste -> keys pressed", times.pressed);
    print("paste -> text readable", times.readable);
    return 0;
}

} // namespace

int main(int argc, char **argv) { return test::runOnPrivateDesktop(argc, argv, run); }
