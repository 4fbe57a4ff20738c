#include "Platform/Linux/Speech/FileRecognition.h"

#include "Foundation/ThreadName.h"
#include "Foundation/VeskError.h"
#include "Platform/Linux/Speech/SherpaSpeechModels.h"
#include "Platform/Linux/Speech/StretchReader.h"
#include "Platform/Linux/Speech/VocabularyCorrection.h"

namespace vesk {

namespace {

AudioDuration seconds(std::int64_t samples)
{
    return AudioDuration(static_cast<double>(samples) / StretchCutter::SampleRate);
}

} // namespace

FileRecognition::FileRecognition(SherpaSpeechModels &models, AudioConverters &converters, QString locale,
                                 QString voiceActivityModel, QStringList vocabulary, AudioFileReader &file)
    : m_models(models)
    , m_converters(converters)
    , m_locale(std::move(locale))
    , m_voiceActivityModel(std::move(voiceActivityModel))
    , m_vocabulary(std::move(vocabulary))
    , m_reader([this, &file] { read(file); })
    , m_recognizer([this] { recognize(); })
{
}

FileRecognition::~FileRecognition()
{
    abandon();
    m_reader.join();
    m_recognizer.join();
}

void FileRecognition::abandon()
{
    m_isAbandoned = true;
    m_stretches.abandon();
}

void FileRecognition::read(AudioFileReader &file)
{
    setCurrentThreadName("vesk.listen");
    try {
        VoiceActivity voiceActivity(m_voiceActivityModel, VoiceActivity::Afterwards);
        StretchReader reader(m_converters, voiceActivity, [this](Stretch place, std::vector<float> samples) {
            m_stretches.push({place, std::move(samples)});
        });
        while (const auto block = m_isAbandoned ? std::nullopt : file.read()) {
            reader.add(*block);
        }
        reader.finish();
    } catch (...) {
        m_readFailure = std::current_exception();
    }
    m_stretches.close();
}

void FileRecognition::recognize()
{
    setCurrentThreadName("vesk.recognize");
    try {
        if (!m_models.bestAudioFormat(m_locale)) {
            throw VeskError::noSpeechModel();
        }
        const VocabularyCorrection correction(m_vocabulary);
        std::shared_ptr<Recognizer> recognizer; // loaded for the first stretch: silence needs no model
        while (const auto sound = m_stretches.pop()) {
            if (!recognizer) {
                recognizer = m_models.recognizer(m_locale);
            }
            const QString text = correction.corrected(recognizer->recognize(sound->samples));
            m_results.push({text, seconds(sound->place.begin), seconds(sound->place.end)});
        }
        // An abandoned reader may still be writing it.
        m_results.finish(m_isAbandoned ? std::exception_ptr() : m_readFailure);
    } catch (...) {
        m_stretches.abandon(); // the reader stops waiting for room
        m_results.finish(std::current_exception());
    }
}

} // namespace vesk
