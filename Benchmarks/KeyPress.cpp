// From the key going down, injected into a private desktop, to the call that starts a dictation:
// vesk_key_press [COUNT]

#include "Desktop/Screen.h"
#include "DesktopProgram.h"
#include "Dictation/Hotkey.h"
#include "Platform/Linux/Keys/InjectedKeys.h"
#include "Platform/Linux/Keys/XInputKeyEvents.h"
#include "Support/Await.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>

namespace {

using namespace vesk;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int RightAlt = 108;

void measure(int count)
{
    test::Screen screen;
    InjectedKeys injected;
    XInputKeyEvents events(injected);
    Hotkey hotkey(events, [] { return std::vector{HotkeyKey::rightOption}; });
    std::optional<Clock::time_point> pressed;
    bool isReleased = false;
    hotkey.onPress = [&](HotkeyKey) { pressed = Clock::now(); };
    hotkey.onRelease = [&](HotkeyKey) { isReleased = true; };
    hotkey.start();
    std::vector<double> times;
    for (int i = 0; i < count; ++i) {
        pressed.reset();
        isReleased = false;
        const auto start = Clock::now();
        screen.keyDown(RightAlt);
        if (!eventually([&] { return pressed.has_value(); }, std::chrono::seconds(5))) {
            throw std::runtime_error("a press was not seen");
        }
        times.push_back(Milliseconds(*pressed - start).count());
        screen.keyUp(RightAlt);
        eventually([&] { return isReleased; }, std::chrono::seconds(5));
    }
    std::ranges::sort(times);
    std::printf("key down -> onPress: median %.2f ms, p95 %.2f ms, worst %.2f ms; %d presses\n",
                times[times.size() / 2], times[times.size() * 95 / 100], times.back(), count);
}

} // namespace

int main(int argc, char **argv)
{
    return test::runOnPrivateDesktop(argc, argv, [](const QStringList &arguments) {
        measure(std::max(1, arguments.value(0, QStringLiteral("200")).toInt()));
        return 0;
    });
}
