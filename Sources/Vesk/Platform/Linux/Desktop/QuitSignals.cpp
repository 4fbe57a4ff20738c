#include "Platform/Linux/Desktop/QuitSignals.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace vesk {

namespace {

constexpr std::array Signals = {SIGTERM, SIGINT, SIGHUP};

/// The end that the handler writes to, the only thing it may touch.
volatile std::sig_atomic_t writingEnd = -1;

extern "C" void wakeUp(int)
{
    const int before = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(writingEnd, &byte, 1);
    errno = before;
}

std::array<int, 2> makePipe()
{
    std::array<int, 2> ends = {};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category(), "no pipe for signals");
    }
    return ends;
}

void setHandlers(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : Signals) {
        sigaction(signal, &action, nullptr);
    }
}

} // namespace

QuitSignals::QuitSignals(std::function<void()> quit)
    : m_pipe(makePipe())
    , m_notifier(m_pipe[0], QSocketNotifier::Read)
{
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this, quit = std::move(quit)] {
        char byte = 0;
        [[maybe_unused]] const auto count = read(m_pipe[0], &byte, 1);
        // A second one is meant: whatever hangs then is ended the plain way.
        setHandlers(SIG_DFL);
        quit();
    });
    writingEnd = m_pipe[1];
    setHandlers(wakeUp);
}

QuitSignals::~QuitSignals()
{
    setHandlers(SIG_DFL);
    writingEnd = -1;
    close(m_pipe[0]);
    close(m_pipe[1]);
}

} // namespace vesk
