#include "Platform/Linux/Pasteboard/KeeperStart.h"

#include "Foundation/Descriptor.h"

#include <QFile>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <unistd.h>

namespace vesk {

namespace {

/// What the keeper has in place of ours. Nothing else of ours stays open in it: a reader of our output would
/// wait for its end.
class Surroundings {
public:
    Surroundings(int input, int output)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_adddup2(&m_actions, input, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&m_actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addchdir_np(&m_actions, "/");
        posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
        posix_spawnattr_init(&m_attributes);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSID);
    }
    ~Surroundings()
    {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }
    Surroundings(const Surroundings &) = delete;
    Surroundings &operator=(const Surroundings &) = delete;

    bool start(const QByteArray &program) const
    {
        QByteArray name = program;
        char *const arguments[] = {name.data(), nullptr};
        pid_t id = 0;
        return posix_spawn(&id, program.constData(), &m_actions, &m_attributes, arguments, environ) == 0;
    }

private:
    posix_spawn_file_actions_t m_actions = {};
    posix_spawnattr_t m_attributes = {};
};

} // namespace

bool startClipboardKeeper(const QString &program, const QByteArray &packed, std::chrono::milliseconds limit)
{
    // In memory and not through a pipe: nothing to wait for, and no signal when the keeper ends early.
    const Descriptor content(memfd_create("clipboard", MFD_CLOEXEC));
    int ends[2] = {-1, -1};
    if (content.number() < 0 || writeAll(content.number(), packed) != 0
        || lseek(content.number(), 0, SEEK_SET) != 0 || pipe2(ends, O_CLOEXEC) != 0) {
        return false;
    }
    const Descriptor answer(ends[0]);
    Descriptor word(ends[1]);
    if (!Surroundings(content.number(), word.number()).start(QFile::encodeName(program))) {
        return false;
    }
    word.close(); // the keeper's is the only one left: its end is seen
    pollfd waiting = {answer.number(), POLLIN, 0};
    char ready = 0;
    return poll(&waiting, 1, static_cast<int>(limit.count())) == 1 && read(answer.number(), &ready, 1) == 1;
}

} // namespace vesk
