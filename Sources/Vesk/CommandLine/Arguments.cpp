#include "CommandLine/Arguments.h"

namespace vesk {

using namespace Qt::StringLiterals;

const char *const UsageText = R"(Usage:
  Vesk --file <audio> [--cloud] [--app <name>] [--window <title>] [--before <text>] [--raw]
  Vesk --text <transcript> [--app <name>] [--window <title>] [--before <text>]
  Vesk --text <instruction> --selected <text> [--app <name>] [--window <title>]
  Vesk --mcp

  --file    transcribe an audio file with Apple's on-device model, then clean it up on the Vesk server
  --cloud   with --file: send the file to the Vesk server instead, which hears Bulgarian and English
  --text    skip speech recognition and clean up this transcript
  --app, --window, --before   describe the field the text is meant for
  --selected  command mode: the transcript is an instruction that rewrites this selected text
  --raw     print what Apple heard, without the server
  --mcp     serve the notes, read-only, to Claude and other AI apps (MCP over stdin and stdout)

Everything but --raw and --mcp needs Vesk to be signed in (Settings > Account).
)";

Arguments Arguments::parse(const QStringList &words)
{
    Arguments arguments;
    if (words.contains("--mcp"_L1)) {
        arguments.request = Request::notesServer;
        return arguments;
    }
    bool makesSense = true;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString &word = words[i];
        if (word == "--raw"_L1 || word == "--cloud"_L1) {
            arguments.flags.insert(word);
        } else if (word.startsWith("--"_L1) && i + 1 < words.size()) {
            arguments.options.insert(word, words[++i]);
        } else {
            makesSense = false;
        }
    }
    // Also an option called "--help" with a value asks for the usage text.
    makesSense = makesSense && !arguments.hasOption("--help"_L1)
        && (arguments.hasOption("--file"_L1) || arguments.hasOption("--text"_L1));
    arguments.request = makesSense ? Request::work : Request::usage;
    return arguments;
}

} // namespace vesk
