#pragma once

#include "Platform/Linux/Speech/FileRecognition.h"
#include "Platform/Linux/Speech/LiveRecognition.h"

namespace vesk {

/// One recognition with sherpa-onnx, of a file or of someone who speaks.
class SherpaAnalyzer final : public SpeechAnalyzer {
public:
    SherpaAnalyzer(SherpaSpeechModels &models, AudioConverters &converters, QString locale,
                   QString voiceActivityModel);
    ~SherpaAnalyzer() override;

    void setContextualStrings(const QStringList &strings) override { m_vocabulary = strings; }
    void start(AudioFileReader &file) override;
    void start() override;
    void feed(AudioBlock block) override;
    void finish() override;
    void cancelAndFinishNow() override;
    Task<std::optional<SpeechResult>> nextResult() override;

private:
    SherpaSpeechModels &m_models;
    AudioConverters &m_converters;
    const QString m_locale;
    const QString m_voiceActivityModel;
    QStringList m_vocabulary;
    std::unique_ptr<FileRecognition> m_file;
    std::shared_ptr<LiveDecoding> m_decoding; ///< also kept by what still runs for it
    std::unique_ptr<LiveRecognition> m_live;
};

} // namespace vesk
