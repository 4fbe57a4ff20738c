#pragma once

#include "Platform/AudioFiles.h"
#include "Platform/SpeechModels.h"

#include <functional>

/// Recognition on the machine: from a configured language to a model that is ready, and from sound to one
/// text. Main thread.
namespace vesk::Transcriber {

/// Told of each finished piece while a recognition runs.
using ResultHandler = std::function<void(const SpeechResult &)>;

/// The supported locale for an identifier. Throws VeskError::unsupportedLocale.
Task<QString> resolve(SpeechModels &models, QString localeIdentifier);

/// Installs, loads and keeps the model of a language. Throws as resolve() and SpeechModels::prepare() do.
Task<> prepare(SpeechModels &models, QString localeIdentifier);

/// All results of one started recognition, joined by blanks, every run of white space made one.
Task<QString> collect(SpeechAnalyzer &analyzer, ResultHandler onResult = {});

/// What a file of sound says, and what the file lacked.
struct Transcript {
    QString text;
    std::optional<QString> shortfall; ///< a sentence for the person when not all of the file could be read
};

/// The text of a whole file. An empty text when nothing is said in it. Throws as resolve() does,
/// AudioFileError, and VeskError::noSpeechModel. `onOpened` is told the file's length, if known, before the
/// first result.
Task<Transcript> transcribe(SpeechModels &models, AudioFiles &files, QString file, QString localeIdentifier,
                            QStringList vocabulary,
                            std::function<void(std::optional<AudioDuration>)> onOpened = {},
                            ResultHandler onResult = {});

} // namespace vesk::Transcriber
