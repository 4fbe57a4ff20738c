#include "Dictation/Transcriber.h"

#include "Foundation/Text.h"
#include "Foundation/VeskError.h"

namespace vesk::Transcriber {

Task<QString> resolve(SpeechModels &models, QString localeIdentifier)
{
    const auto locale = models.supportedLocale(localeIdentifier);
    if (!locale) {
        throw VeskError::unsupportedLocale(localeIdentifier);
    }
    co_return *locale;
}

Task<> prepare(SpeechModels &models, QString localeIdentifier)
{
    const QString locale = co_await resolve(models, std::move(localeIdentifier));
    co_await models.prepare(locale);
}

Task<QString> collect(SpeechAnalyzer &analyzer, ResultHandler onResult)
{
    QStringList pieces;
    while (const auto result = co_await analyzer.nextResult()) {
        pieces.append(result->text);
        if (onResult) {
            onResult(*result);
        }
    }
    co_return Text::collapsed(pieces.join(u' '));
}

Task<Transcript> transcribe(SpeechModels &models, AudioFiles &files, QString file, QString localeIdentifier,
                            QStringList vocabulary,
                            std::function<void(std::optional<AudioDuration>)> onOpened,
                            ResultHandler onResult)
{
    const QString locale = co_await resolve(models, std::move(localeIdentifier));
    const std::unique_ptr<AudioFileReader> reader = files.openForReading(file);
    if (onOpened) {
        onOpened(reader->duration());
    }
    // After the reader, so that its threads are gone before what they read from.
    const std::unique_ptr<SpeechAnalyzer> analyzer = models.makeAnalyzer(locale);
    if (!vocabulary.isEmpty()) {
        analyzer->setContextualStrings(vocabulary);
    }
    analyzer->start(*reader);
    QString text = co_await collect(*analyzer, std::move(onResult));
    co_return Transcript{std::move(text), reader->shortfall()};
}

} // namespace vesk::Transcriber
