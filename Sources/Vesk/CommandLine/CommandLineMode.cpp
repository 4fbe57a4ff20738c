#include "CommandLine/CommandLineMode.h"

#include "Dictation/Rewrite.h"
#include "Foundation/Config.h"

#include <cmath>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// The field that the words are meant for, as the options describe it.
FocusContext describedField(const Arguments &arguments)
{
    FocusContext context;
    context.appName = arguments.option("--app"_L1).value_or(u"TextEdit"_s);
    context.bundleID = arguments.option("--bundle"_L1).value_or(QString());
    context.windowTitle = arguments.option("--window"_L1);
    context.textBefore = arguments.option("--before"_L1);
    return context;
}

/// The selection that a command rewrites, under the same rule as one captured from a field.
QString checkedSelection(FocusContext context, const QString &selected)
{
    context.selectedText = selected.left(Rewrite::SelectionLimit);
    context.isSelectionCut = selected.size() > Rewrite::SelectionLimit;
    return Rewrite::selection(context);
}

QString percentDone(AudioDuration done, AudioDuration whole)
{
    constexpr double Percent = 100;
    return u"Transcribing… %1 %"_s.arg(std::lround(std::min(1.0, done / whole) * Percent));
}

} // namespace

CommandLineMode::CommandLineMode(Services services)
    : m_services(std::move(services))
{
}

Task<int> CommandLineMode::run(Arguments arguments)
{
    try {
        co_await work(std::move(arguments));
        co_return success;
    } catch (...) {
        m_services.terminal.complain(u"error: " + describe(std::current_exception()));
        co_return failure;
    }
}

Task<> CommandLineMode::work(Arguments arguments)
{
    const Config config = Config::load();
    const ServerClient client = ServerClient::current(m_services.server);
    if (const auto file = arguments.option("--file"_L1)) {
        if (arguments.has("--cloud"_L1)) {
            co_await uploadFile(*file, describedField(arguments), config, client);
        } else {
            co_await transcribeFile(*file, arguments, config, client);
        }
        co_return;
    }
    const QString text = arguments.option("--text"_L1).value_or(QString());
    if (const auto selected = arguments.option("--selected"_L1)) {
        co_await rewriteSelection(text, *selected, describedField(arguments), config, client);
    } else {
        co_await cleanUp(text, describedField(arguments), config, client);
    }
}

Task<> CommandLineMode::transcribeFile(QString file, Arguments arguments, Config config, ServerClient client)
{
    const auto start = m_services.clock.monotonic();
    const QString transcript = co_await recognize(std::move(file), config);
    printTimed(u"speech", start, transcript);
    if (!arguments.has("--raw"_L1)) {
        co_await cleanUp(transcript, describedField(arguments), std::move(config), std::move(client));
    }
}

Task<> CommandLineMode::uploadFile(QString file, FocusContext context, Config config, ServerClient client)
{
    const auto start = m_services.clock.monotonic();
    const Dictated dictated = co_await client.dictation(file, std::move(context), config.vocabulary);
    m_services.terminal.print(u"heard: " + dictated.raw);
    printTimed(u"server", start, dictated.text);
}

Task<> CommandLineMode::rewriteSelection(QString instruction, QString selected, FocusContext context,
                                         Config config, ServerClient client)
{
    const auto start = m_services.clock.monotonic();
    const QString selection = checkedSelection(context, selected);
    const Instruction typed = TypedInstruction{std::move(instruction)};
    const Commanded commanded =
        co_await client.command(selection, typed, std::move(context), config.vocabulary);
    printTimed(u"server", start, commanded.isUnchanged ? u"(unchanged)"_s : commanded.text);
}

Task<> CommandLineMode::cleanUp(QString transcript, FocusContext context, Config config, ServerClient client)
{
    const auto start = m_services.clock.monotonic();
    const QString text = co_await client.cleanup(transcript, std::move(context), config.vocabulary);
    printTimed(u"server", start, text);
}

Task<QString> CommandLineMode::recognize(QString file, Config config)
{
    SpeechModule &speech = m_services.speech();
    Terminal &terminal = m_services.terminal;
    const auto length = std::make_shared<std::optional<AudioDuration>>();
    const auto onOpened = [length](std::optional<AudioDuration> duration) { *length = duration; };
    const auto onResult = [length, &terminal](const SpeechResult &result) {
        if (*length && (*length)->count() > 0) {
            terminal.showProgress(percentDone(result.end, **length));
        }
    };
    const Transcriber::Transcript transcript =
        co_await Transcriber::transcribe(speech.speechModels(), speech.audioFiles(), std::move(file),
                                         config.locale, config.vocabulary, onOpened, onResult);
    if (transcript.shortfall) {
        terminal.complain(u"warning: " + *transcript.shortfall);
    }
    co_return transcript.text;
}

void CommandLineMode::printTimed(QStringView who, Clock::Monotonic since, QStringView text)
{
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::milliseconds>(m_services.clock.monotonic() - since);
    m_services.terminal.print(who + u' ' + QString::number(elapsed.count()) + u" ms: " + text);
}

} // namespace vesk
