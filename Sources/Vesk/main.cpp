// The composition root: chooses the mode from the arguments, makes what the mode needs and hands it over.

#include "CommandLine/CommandLineMode.h"
#include "Foundation/Config.h"
#include "Foundation/Descriptor.h"
#include "MCP/MCPServer.h"
#include "Platform/Linux/Host/LinuxHost.h"
#include "Platform/ModuleLoader.h"
#include "Platform/Qt/SystemClock.h"
#include "Server/ServerConnection.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdlib>
#include <unistd.h>

namespace {

using namespace vesk;

/// Ends the process's event loop with the status of the command.
Task<> runCommand(CommandLineMode &mode, Arguments arguments)
{
    const int status = co_await mode.run(std::move(arguments));
    QCoreApplication::exit(status);
}

int commandLine(int &argumentCount, char **arguments, Arguments parsed)
{
    QCoreApplication application(argumentCount, arguments);
    const LinuxHost host;
    SystemClock clock;
    Terminal terminal;
    ServerConnection server(host);
    std::unique_ptr<SpeechModule> speech;
    CommandLineMode mode({
        [&speech]() -> SpeechModule & {
            if (!speech) {
                const InstalledFolders folders = InstalledFolders::ofThisProgram();
                speech = loadSpeechModule(
                    folders, {folders.data + u"/speech/models", Config::directory() + u"/Models"});
            }
            return *speech;
        },
        server,
        clock,
        terminal,
    });
    // From within the event loop: work that ends without waiting could not end a loop that has not begun.
    QMetaObject::invokeMethod(
        &application, [&] { launch(QStringLiteral("command"), runCommand(mode, std::move(parsed))); },
        Qt::QueuedConnection);
    return QCoreApplication::exec();
}

int desktop(int &argumentCount, char **arguments)
{
    // Without a display Qt ends the process by abort(), which looks like a fault of the program.
    if (!LinuxHost::hasDisplay()) {
        writeAll(STDERR_FILENO,
                 "error: Vesk needs a desktop, and there is none here. Its commands need none: "
                 "vesk --help\n");
        return EXIT_FAILURE;
    }
    try {
        const auto folders = InstalledFolders::ofProgram(LinuxHost::executable());
        return loadApplicationModule(folders).runApplication(argumentCount, arguments);
    } catch (const ModuleError &error) {
        writeAll(STDERR_FILENO, QString(u"error: " + error.errorDescription() + u'\n').toUtf8());
        return EXIT_FAILURE;
    }
}

} // namespace

int main(int argumentCount, char **arguments)
{
    occupyStandardDescriptors();
    std::signal(SIGPIPE,
                SIG_IGN); // a reader that went away is an error like any other, and gets its sentence
    if (argumentCount < 2) {
        return desktop(argumentCount, arguments);
    }
    QStringList words;
    for (int i = 1; i < argumentCount; ++i) {
        words.append(QString::fromLocal8Bit(arguments[i]));
    }
    Arguments parsed = Arguments::parse(words);
    switch (parsed.request) {
    case Arguments::Request::notesServer: return serveNotes();
    case Arguments::Request::usage: writeAll(STDOUT_FILENO, UsageText); return CommandLineMode::usage;
    case Arguments::Request::work: return commandLine(argumentCount, arguments, std::move(parsed));
    }
    Q_UNREACHABLE();
}
