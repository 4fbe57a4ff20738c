#pragma once

#include "CommandLine/Arguments.h"
#include "CommandLine/Terminal.h"
#include "Dictation/Transcriber.h"
#include "Foundation/FocusContext.h"
#include "Platform/Clock.h"
#include "Platform/SpeechModule.h"
#include "Server/ServerClient.h"

namespace vesk {

struct Config;

/// One job without any window: transcribe, clean up or rewrite, print the result. The same road that
/// dictation takes, so that it can be driven and timed from a terminal. Main thread; lives as long as its one
/// run().
class CommandLineMode {
public:
    enum ExitStatus { success = 0, failure = 1, usage = 2 };

    /// What the mode asks of the rest of the program. The speech module is loaded by the first call, if there
    /// is one.
    struct Services {
        std::function<SpeechModule &()> speech;
        ServerConnection &server;
        Clock &clock;
        Terminal &terminal;
    };

    explicit CommandLineMode(Services services);

    /// Does what the arguments ask for and returns the exit status. Any failure has been told on standard
    /// error then, as "error: " and its sentence.
    Task<int> run(Arguments arguments);

private:
    Task<> work(Arguments arguments);
    Task<> transcribeFile(QString file, Arguments arguments, Config config, ServerClient client);
    Task<> uploadFile(QString file, FocusContext context, Config config, ServerClient client);
    Task<> rewriteSelection(QString instruction, QString selected, FocusContext context, Config config,
                            ServerClient client);
    Task<> cleanUp(QString transcript, FocusContext context, Config config, ServerClient client);

    Task<QString> recognize(QString file, Config config);
    void printTimed(QStringView who, Clock::Monotonic since, QStringView text);

    Services m_services;
};

} // namespace vesk
