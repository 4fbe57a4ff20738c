#include "Desktop/Supervisor.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vesk::test {

namespace {

/// The direct children of this process. As the reaper of its descendants it is the parent of every orphan.
std::string children()
{
    std::ifstream file("/proc/self/task/" + std::to_string(getpid()) + "/children");
    std::string ids;
    std::getline(file, ids, '\0');
    return ids;
}

void signalAll(const std::string &ids, int number)
{
    const char *next = ids.c_str();
    char *end = nullptr;
    for (long id = std::strtol(next, &end, 10); id > 0; id = std::strtol(next, &end, 10)) {
        kill(static_cast<pid_t>(id), number);
        next = end;
    }
}

/// Ends the children level by level: those of an ended child become our own.
void endDescendants()
{
    using Clock = std::chrono::steady_clock;
    const auto patience = Clock::now() + std::chrono::seconds(3);
    timespec pause = {0, 10'000'000};
    while (true) {
        while (waitpid(-1, nullptr, WNOHANG) > 0) {}
        const std::string ids = children();
        if (ids.empty()) {
            return;
        }
        signalAll(ids, Clock::now() < patience ? SIGTERM : SIGKILL);
        nanosleep(&pause, nullptr);
    }
}

} // namespace

int supervised(const std::function<int()> &body)
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    const pid_t child = fork();
    if (child < 0) {
        std::perror("fork");
        return 1;
    }
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        std::exit(body());
    }
    int status = 0;
    while (waitpid(child, &status, 0) != child) {}
    endDescendants();
    if (WIFSIGNALED(status)) {
        std::fprintf(stderr, "the tests were ended by signal %d\n", WTERMSIG(status));
        return 1;
    }
    return WEXITSTATUS(status);
}

} // namespace vesk::test
