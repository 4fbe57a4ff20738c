// Goes on offering what Vesk gave back to the clipboard when Vesk itself has ended: what is copied dies with
// the program that offers it. Reads it from standard input, answers with one byte once it is offered, and
// ends when the person copies something else.

#include "Platform/Linux/Pasteboard/KeptSelections.h"

#include <poll.h>
#include <unistd.h>

namespace {

QByteArray everythingFrom(int descriptor)
{
    QByteArray bytes;
    char piece[65536];
    ssize_t length = 0;
    while ((length = read(descriptor, piece, sizeof(piece))) > 0) {
        bytes.append(piece, length);
    }
    return bytes;
}

} // namespace

int main()
{
    vesk::X11Selections selections;
    if (!selections.isUsable() || !vesk::KeptSelections::takeOver(selections, everythingFrom(STDIN_FILENO))) {
        return 1;
    }
    const char ready = '!';
    if (write(STDOUT_FILENO, &ready, 1) != 1) {
        return 1;
    }
    close(STDIN_FILENO);
    close(STDOUT_FILENO); // nobody has to wait for this program's end
    while (selections.isUsable() && selections.ownsAnything()) {
        pollfd waiting = {selections.descriptor(), POLLIN, 0};
        poll(&waiting, 1, -1);
        selections.handlePending();
    }
    return 0;
}
