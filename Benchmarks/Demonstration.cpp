// The main job, shown on a machine without a display: the application as it is installed, on a desktop of its
// own. A person's recorded voice is said into the virtual microphone while the key is held; another program
// reads what stands in the editor then.
//
//   vesk_demonstration PROGRAM SOUND-FILE PICTURE
//
// Prints the words and the time from the release of the key until they could be read, and leaves a picture of
// the desktop (PNG). Exit status 1 when no words came.

#include "Desktop/Peer.h"
#include "Desktop/ShippedApplication.h"
#include "DesktopProgram.h"
#include "Foundation/Config.h"

#include <QFile>

#include <cstdio>

namespace {

using namespace vesk;
using namespace Qt::StringLiterals;
using Milliseconds = std::chrono::duration<double, std::milli>;

/// While the key is held and something is being said: the indicator shows, and where it shows it.
void takePicture(const QString &file) { test::run(u"import"_s, {u"-window"_s, u"root"_s, file}); }

int show(const QString &program, const QString &clip, const QString &picture)
{
    Config config;
    config.speech = u"mac"_s;
    config.cleanup = false; // needs an account
    config.write();
    test::run(u"xsetroot"_s, {u"-solid"_s, u"#3b5b7a"_s});
    test::Screen screen;
    const auto editor = test::startMousepad(screen);
    test::ShippedApplication application(program);
    test::Process reader(u"/usr/bin/python3"_s,
                         QStringList{QStringLiteral(VESK_TEST_PEERS "/insertion_times.py"),
                                     QString::number(editor->process().id())});
    reader.readLine();
    const auto released = application.dictate(clip);
    const QByteArray line = reader.readLine(std::chrono::minutes(1));
    const std::chrono::nanoseconds read(line.left(line.indexOf(' ')).toLongLong());
    // The editor draws a moment after it has the text; the next dictation shows both.
    application.hold();
    const auto voice = application.soundServer().play(clip, u"desk"_s);
    test::pause(std::chrono::seconds(2));
    takePicture(picture);
    application.cancel();
    std::printf("%s\n", line.mid(line.indexOf(' ') + 1).constData());
    std::fprintf(stderr, "%.0f ms after the key was let go; the picture is %s\n",
                 Milliseconds(read - released.time_since_epoch()).count(), qPrintable(picture));
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: vesk_demonstration PROGRAM SOUND-FILE PICTURE\n");
        return 2;
    }
    return test::runOnPrivateDesktop(
        argc, argv,
        [](const QStringList &arguments) { return show(arguments[0], arguments[1], arguments[2]); },
        u"800x640x24"_s);
}
