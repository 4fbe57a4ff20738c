#include "Platform/Linux/Pasteboard/KeeperStart.h"

#include "Foundation/Descriptor.h"

#include <QFile>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
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

    /// The process, or nothing.
    std::optional<pid_t> start(const QByteArray &program, QByteArray argument = {}) const
    {
        QByteArray name = program;
        char *const arguments[] = {name.data(), argument.isEmpty() ? nullptr : argument.data(), nullptr};
        pid_t id = 0;
        const bool isStarted =
            posix_spawn(&id, program.constData(), &m_actions, &m_attributes, arguments, environ) == 0;
        return isStarted ? std::optional(id) : std::nullopt;
    }

private:
    posix_spawn_file_actions_t m_actions = {};
    posix_spawnattr_t m_attributes = {};
};

/// A file in memory and not a pipe: nothing to wait for, and no signal when the keeper ends early. Negative
/// when there is no room.
int fileOf(const QByteArray &packed)
{
    const int content = memfd_create("clipboard", MFD_CLOEXEC);
    if (content >= 0 && (writeAll(content, packed) != 0 || lseek(content, 0, SEEK_SET) != 0)) {
        close(content);
        return -1;
    }
    return content;
}

} // namespace

bool startClipboardKeeper(const QString &program, const QByteArray &packed, std::chrono::milliseconds limit)
{
    const Descriptor content(fileOf(packed));
    int ends[2] = {-1, -1};
    if (content.number() < 0 || pipe2(ends, O_CLOEXEC) != 0) {
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

bool StandByKeeper::replace(const QString &program, const QByteArray &packed, unsigned window)
{
    const Descriptor content(fileOf(packed));
    int ends[2] = {-1, -1};
    if (content.number() < 0 || socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        return false;
    }
    const Descriptor theirs(ends[1]);
    const auto process = Surroundings(content.number(), theirs.number())
                             .start(QFile::encodeName(program), QByteArray::number(window));
    if (!process) {
        close(ends[0]);
        return false;
    }
    dismiss(); // the new one first: there is always one
    m_word = ends[0];
    m_running.push_back(*process);
    return true;
}

void StandByKeeper::dismiss()
{
    if (m_word >= 0) {
        send(m_word, "x", 1, MSG_NOSIGNAL); // fails when it has ended, which is as well
        close(m_word);
        m_word = -1;
    }
    std::erase_if(m_running, [](int process) { return waitpid(process, nullptr, WNOHANG) != 0; });
}

} // namespace vesk
