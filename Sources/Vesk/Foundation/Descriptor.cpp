#include "Foundation/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace vesk {

void waitUntilReady(int descriptor, short events)
{
    pollfd waiting = {descriptor, events, 0};
    ::poll(&waiting, 1, -1); // why it failed, if it did, the next read or write says
}

int writeAll(int descriptor, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), static_cast<std::size_t>(bytes.size()));
        if (written < 0 && errno == EAGAIN) {
            waitUntilReady(descriptor, POLLOUT);
        } else if (written < 0 && errno != EINTR) {
            return errno;
        }
        bytes = bytes.sliced(std::max<qsizetype>(written, 0));
    }
    return 0;
}

int Descriptor::close()
{
    const int number = std::exchange(m_number, -1);
    return number >= 0 && ::close(number) != 0 ? errno : 0;
}

} // namespace vesk
