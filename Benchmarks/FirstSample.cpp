// How much of what is said at once a recording holds: from the press (AudioInput::start) to the capture time
// of the first sample that is kept, to the first block, and to the return of the call; and the processor's
// share while recording. On PulseAudio's and PipeWire's server with a virtual microphone.

#include "Desktop/SoundServer.h"
#include "Dictation/AudioInput.h"
#include "Foundation/UserError.h"
#include "Platform/Linux/Sound/PulseSound.h"

#include <QCoreApplication>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <ctime>
#include <random>

using namespace Qt::StringLiterals;
using namespace vesk;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

namespace {

constexpr int Repetitions = 200;

class Presses {
public:
    explicit Presses(PulseSound &sound)
        : m_input(sound.audioDevices(), sound.audioEngines())
    {
    }

    void press()
    {
        const Clock::time_point press = Clock::now();
        m_first.reset();
        m_input.start(u"auto"_s, [this](const AudioBlock &, float) { heard(); });
        m_call.push_back(Clock::now() - press);
        waitForBlock();
        m_sample.push_back(*m_input.firstSample() - press);
        m_block.push_back(*m_first - press);
        m_input.stop();
        // People do not press in step with the server's periods.
        pause(std::chrono::milliseconds(50 + m_random() % 100));
    }

    /// The processor time of the whole program per second of recording.
    double share(std::chrono::seconds time)
    {
        m_input.start(u"auto"_s, [](const AudioBlock &, float) {});
        const std::clock_t before = std::clock();
        pause(time);
        const std::clock_t spent = std::clock() - before;
        m_input.stop();
        return static_cast<double>(spent) / CLOCKS_PER_SEC / static_cast<double>(time.count());
    }

    void print() const
    {
        printRow("first sample captured", m_sample);
        printRow("first block", m_block);
        printRow("start() returns", m_call);
    }

private:
    void heard()
    {
        const std::lock_guard lock(m_mutex);
        if (!m_first) {
            m_first = Clock::now();
            m_changed.notify_one();
        }
    }

    void waitForBlock()
    {
        std::unique_lock lock(m_mutex);
        if (!m_changed.wait_for(lock, std::chrono::seconds(10), [this] { return m_first.has_value(); })) {
            throw std::runtime_error("no sound came");
        }
    }

    void pause(std::chrono::milliseconds time)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, time, [] { return false; });
    }

    static void printRow(const char *name, std::vector<Milliseconds> times)
    {
        std::sort(times.begin(), times.end());
        const auto at = [&times](double part) {
            return times[static_cast<size_t>(part * static_cast<double>(times.size() - 1))].count();
        };
        std::printf("  press to %-22s median %5.1f ms, p95 %5.1f ms, worst %5.1f ms, of %zu\n", name, at(0.5),
                    at(0.95), at(1), times.size());
    }

    AudioInput m_input;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<Clock::time_point> m_first;
    std::vector<Milliseconds> m_sample;
    std::vector<Milliseconds> m_block;
    std::vector<Milliseconds> m_call;
    std::mt19937 m_random{1};
};

void measure(const char *name, test::SoundServer::Kind kind)
{
    test::SoundServer server(kind);
    server.addMicrophone({.name = u"desk"_s});
    PulseSound sound(server.address());
    Presses presses(sound);
    for (int i = 0; i < Repetitions; ++i) {
        presses.press();
    }
    std::printf("%s\n", name);
    presses.print();
    std::printf("  processor while recording: %.2f %%\n", 100 * presses.share(std::chrono::seconds(10)));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    try {
        measure("PulseAudio", test::SoundServer::Kind::pulseAudio);
        measure("PipeWire", test::SoundServer::Kind::pipeWire);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", qPrintable(describe(error)));
        return 1;
    }
    return 0;
}
