#pragma once

#include "Foundation/Task.h"
#include "Platform/AudioBlock.h"
#include "Platform/AudioFiles.h"

#include <QStringList>

#include <memory>
#include <optional>

namespace vesk {

/// A finished piece of what was said.
struct SpeechResult {
    QString text;
    AudioDuration start; ///< where in the sound it was said
    AudioDuration end;

    friend bool operator==(const SpeechResult &, const SpeechResult &) = default;
};

/// One recognition, of a file or of someone who speaks, from its first sound to its last word. Lives on the
/// main thread and is used once; recognition runs on other threads, which leave this object alone when its
/// destructor has run.
class SpeechAnalyzer {
public:
    virtual ~SpeechAnalyzer() = default;

    /// Names and terms that are likely to be said. Before start().
    virtual void setContextualStrings(const QStringList &strings) = 0;

    /// Recognises the whole file and finishes at its end. The reader is used from another thread until
    /// nextResult() has given its last answer or this object is destroyed.
    virtual void start(AudioFileReader &file) = 0;

    /// Recognises what feed() brings, while it comes.
    virtual void start() = 0;

    /// The next block, in the order of speech and in any format. Any thread, one at a time; waits for
    /// nothing. What was recognised is not kept, and a block that comes before start() or after the end is
    /// dropped.
    virtual void feed(AudioBlock block) = 0;

    /// The end of what feed() brought: all of it is still recognised, then the results end.
    virtual void finish() = 0;

    /// The results end now, whatever has been said or read.
    virtual void cancelAndFinishNow() = 0;

    /// The next finished piece, in the order in which they were said; nothing after the last. Throws what
    /// ended the recognition early: VeskError::noSpeechModel, an AudioFileError, or the recogniser's own
    /// failure. One call at a time.
    virtual Task<std::optional<SpeechResult>> nextResult() = 0;
};

/// The languages this computer hears. Main thread.
class SpeechModels {
public:
    virtual ~SpeechModels() = default;

    /// The supported locale that means the same as the identifier ("en_gb" → "en-GB"); nothing when the
    /// language is not one of ours. Says nothing about whether its model is installed.
    virtual std::optional<QString> supportedLocale(const QString &equivalentTo) = 0;

    /// Installs what the locale's model lacks and loads it; it stays loaded for the life of the process.
    /// Throws VeskError::noSpeechModel when it is missing and cannot be had.
    virtual Task<> prepare(QString locale) = 0;

    /// The format that recognition of this locale wants; nothing when its model is missing.
    virtual std::optional<AudioFormat> bestAudioFormat(const QString &locale) = 0;

    /// A new recognition in a supported locale; never null. A missing model shows in its first result.
    virtual std::unique_ptr<SpeechAnalyzer> makeAnalyzer(const QString &locale) = 0;
};

} // namespace vesk
