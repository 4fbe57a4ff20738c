#pragma once

#include "Foundation/BoundedQueue.h"
#include "Foundation/Channel.h"
#include "Platform/AudioConverter.h"
#include "Platform/Linux/Speech/StretchCutter.h"
#include "Platform/SpeechModels.h"

#include <atomic>
#include <thread>

namespace vesk {

class SherpaSpeechModels;

/// Recognises a file in a stream, on two threads: one reads, converts and cuts at pauses, the other
/// recognises each stretch meanwhile. What lies between them is bounded, so an hour takes no more memory than
/// a minute.
class FileRecognition {
public:
    FileRecognition(SherpaSpeechModels &models, AudioConverters &converters, QString locale,
                    QString voiceActivityModel, QStringList vocabulary, AudioFileReader &file);
    ~FileRecognition();
    FileRecognition(const FileRecognition &) = delete;
    FileRecognition &operator=(const FileRecognition &) = delete;

    /// Reading ends; of what was read, no more than what is recognised just now.
    void abandon();

    Task<std::optional<SpeechResult>> nextResult() { return m_results.next(); }

private:
    struct Sound {
        Stretch place;
        std::vector<float> samples;
    };

    void read(AudioFileReader &file);
    void recognize();

    SherpaSpeechModels &m_models;
    AudioConverters &m_converters;
    const QString m_locale;
    const QString m_voiceActivityModel;
    const QStringList m_vocabulary;

    std::atomic<bool> m_isAbandoned = false;
    BoundedQueue<Sound> m_stretches{2};
    /// Written by the reader before it closes m_stretches, read after that, and never once m_isAbandoned.
    std::exception_ptr m_readFailure;
    Channel<SpeechResult> m_results;
    std::thread m_reader;
    std::thread m_recognizer;
};

} // namespace vesk
