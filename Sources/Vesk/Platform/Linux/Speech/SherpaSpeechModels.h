#pragma once

#include "Foundation/SerialQueue.h"
#include "Platform/Linux/Speech/Recognizer.h"
#include "Platform/SpeechModule.h"

#include <QThreadPool>

#include <future>
#include <map>
#include <mutex>

namespace vesk {

/// The models in the folders of the program and of the person, loaded when first asked for and kept. Main
/// thread, but for recognizer() and bestAudioFormat().
class SherpaSpeechModels final : public SpeechModels {
public:
    SherpaSpeechModels(SpeechLocations locations, AudioConverters &converters);
    ~SherpaSpeechModels() override;

    std::optional<QString> supportedLocale(const QString &equivalentTo) override;
    Task<> prepare(QString locale) override;
    std::optional<AudioFormat> bestAudioFormat(const QString &locale) override;
    std::unique_ptr<SpeechAnalyzer> makeAnalyzer(const QString &locale) override;

    /// The loaded model of a supported locale; whoever asks first loads it, the others wait. Any thread,
    /// blocking. Throws VeskError::noSpeechModel or RecognizerError; asked again, it tries again.
    std::shared_ptr<Recognizer> recognizer(const QString &locale);

    /// Where live speech is recognised. It outlives every recognition, so that none has to wait for a decode
    /// that nobody wants any more.
    SerialQueue &recognizing() { return m_recognizing; }

private:
    /// The person's own model of a language goes before the one that came with the program; one that lacks
    /// files only where no other has the language.
    std::optional<ModelDescription> modelFor(const QString &language) const;
    QString voiceActivityModel() const;

    SpeechLocations m_locations;
    AudioConverters &m_converters;
    std::mutex m_mutex;
    std::map<QString, std::shared_future<std::shared_ptr<Recognizer>>>
        m_recognizers;     ///< by folder and language
    QThreadPool m_loading; ///< after what it uses: it waits for what still loads before the rest goes
    SerialQueue m_recognizing{"vesk.recognize"}; ///< the same
};

} // namespace vesk
