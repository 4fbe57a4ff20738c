#include "Platform/Linux/Speech/SherpaAnalyzer.h"

#include "Foundation/VeskError.h"
#include "Platform/Linux/Speech/SherpaSpeechModels.h"
#include "Platform/Linux/Speech/VocabularyCorrection.h"

namespace vesk {

namespace {

/// Recognises with the model of a locale, which is loaded at the first stretch if it is not yet: silence
/// needs none. Called by one thread.
class Decoder {
public:
    Decoder(SherpaSpeechModels &models, QString locale, QStringList vocabulary)
        : m_models(models)
        , m_locale(std::move(locale))
        , m_vocabulary(std::move(vocabulary))
    {
    }

    QString decode(std::span<const float> samples)
    {
        if (!m_recognizer) {
            m_recognizer = m_models.recognizer(m_locale);
            m_correction.emplace(m_vocabulary);
        }
        return m_correction->corrected(m_recognizer->recognize(samples));
    }

private:
    SherpaSpeechModels &m_models;
    const QString m_locale;
    const QStringList m_vocabulary;
    std::shared_ptr<Recognizer> m_recognizer;
    std::optional<VocabularyCorrection> m_correction;
};

} // namespace

SherpaAnalyzer::SherpaAnalyzer(SherpaSpeechModels &models, AudioConverters &converters, QString locale,
                               QString voiceActivityModel)
    : m_models(models)
    , m_converters(converters)
    , m_locale(std::move(locale))
    , m_voiceActivityModel(std::move(voiceActivityModel))
{
}

SherpaAnalyzer::~SherpaAnalyzer() = default;

void SherpaAnalyzer::start(AudioFileReader &file)
{
    m_file = std::make_unique<FileRecognition>(m_models, m_converters, m_locale, m_voiceActivityModel,
                                               m_vocabulary, file);
}

void SherpaAnalyzer::start()
{
    const auto decoder = std::make_shared<Decoder>(m_models, m_locale, m_vocabulary);
    m_decoding = std::make_shared<LiveDecoding>(
        [decoder](std::span<const float> samples) { return decoder->decode(samples); },
        [&queue = m_models.recognizing()](std::function<void()> block) { queue.async(std::move(block)); },
        SentenceJoin(m_vocabulary));
    if (!m_models.bestAudioFormat(
            m_locale)) { // also when nothing is said: silence needs no model to be heard
        m_decoding->end({}, std::make_exception_ptr(VeskError::noSpeechModel()));
    }
    m_live = std::make_unique<LiveRecognition>(m_converters, m_voiceActivityModel, m_decoding);
}

void SherpaAnalyzer::feed(AudioBlock block)
{
    if (m_live) {
        m_live->feed(std::move(block));
    }
}

void SherpaAnalyzer::finish()
{
    if (m_live) {
        m_live->finish();
    }
}

void SherpaAnalyzer::cancelAndFinishNow()
{
    if (m_decoding) {
        m_decoding->abandon();
    }
    if (m_file) {
        m_file->abandon();
    }
}

Task<std::optional<SpeechResult>> SherpaAnalyzer::nextResult()
{
    return m_file ? m_file->nextResult() : m_decoding->nextResult();
}

} // namespace vesk
