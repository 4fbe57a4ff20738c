// Goes on offering what the person had copied when Vesk itself has ended: what is copied dies with the
// program that offers it. Reads it from standard input, answers with one byte on standard output, and ends
// when the person copies something else.
//
// With the number of Vesk's window as its argument it stands by instead: it touches nothing until the other
// end of standard output is closed. A byte from there means that it is not needed any more; an end without
// one, that Vesk was killed while it held the clipboard.

#include "Platform/Linux/Pasteboard/KeptSelections.h"

#include <chrono>
#include <cstdlib>
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

bool isDismissed()
{
    char byte = 0;
    return read(STDOUT_FILENO, &byte, 1) != 0;
}

/// Whether nobody owns the selection once the display has noticed the end of the window that did.
bool isOrphaned(vesk::X11Selections &selections, xcb_atom_t selection, xcb_window_t former)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (selections.ownerOf(selection) == former && std::chrono::steady_clock::now() < limit) {
        pollfd waiting = {selections.descriptor(), POLLIN, 0};
        poll(&waiting, 1, 100);
        selections.handlePending();
    }
    return selections.ownerOf(selection) == XCB_NONE;
}

bool takeOver(vesk::X11Selections &selections, const QByteArray &content)
{
    return selections.isUsable() && vesk::KeptSelections::takeOver(selections, content);
}

bool takeOverFrom(vesk::X11Selections &selections, const QByteArray &content, xcb_window_t former)
{
    return selections.isUsable()
        && vesk::KeptSelections::takeOver(selections, content, [&](xcb_atom_t selection) {
               return isOrphaned(selections, selection, former);
           });
}

} // namespace

int main(int count, char **arguments)
{
    const QByteArray content = everythingFrom(STDIN_FILENO);
    const bool standsBy = count > 1;
    if (standsBy && isDismissed()) {
        return 0;
    }
    vesk::X11Selections selections; // not before: what arrives there has to be read
    if (standsBy) {
        const auto former = static_cast<xcb_window_t>(std::strtoul(arguments[1], nullptr, 10));
        if (!takeOverFrom(selections, content, former)) {
            return 1;
        }
    } else {
        const char ready = '!';
        if (!takeOver(selections, content) || write(STDOUT_FILENO, &ready, 1) != 1) {
            return 1;
        }
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
