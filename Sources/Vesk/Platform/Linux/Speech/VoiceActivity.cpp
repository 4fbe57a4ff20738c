#include "Platform/Linux/Speech/VoiceActivity.h"

#include "Foundation/Log.h"
#include "Foundation/VeskError.h"
#include "Platform/Linux/Speech/StretchCutter.h"

#include <QFile>
#include <QFileInfo>

#include <numeric>
#include <sherpa-onnx/c-api/c-api.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// The detector keeps the sound of all speech until it ends. Past this it starts afresh, or music that it
/// takes for speech would fill the memory.
constexpr float LongestSpeechSeconds = 60.0F;

struct DetectorDestroyer {
    void operator()(const SherpaOnnxVoiceActivityDetector *detector) const
    {
        SherpaOnnxDestroyVoiceActivityDetector(detector);
    }
};

} // namespace

struct VoiceActivity::Implementation {
    std::unique_ptr<const SherpaOnnxVoiceActivityDetector, DetectorDestroyer> detector;
    std::size_t speechSamples = 0; ///< of the speech that goes on now
};

VoiceActivity::VoiceActivity(const QString &modelFile, Delays delays)
{
    if (!QFileInfo(modelFile).isFile()) {
        throw VeskError::noSpeechModel();
    }
    const QByteArray path = QFile::encodeName(modelFile);
    SherpaOnnxVadModelConfig config = {};
    config.silero_vad.model = path.constData();
    config.silero_vad.threshold = 0.5F;
    config.silero_vad.min_silence_duration = delays.silence;
    config.silero_vad.min_speech_duration = delays.speech;
    config.silero_vad.window_size = StretchCutter::Window;
    config.sample_rate = StretchCutter::SampleRate;
    config.num_threads = 1;
    config.provider = "cpu";
    // Someone who speaks longer without a pause is listened to more strictly, so that a short breath ends it.
    config.silero_vad.max_speech_duration = 20.0F;
    try {
        m_implementation = std::make_unique<Implementation>();
        m_implementation->detector.reset(
            SherpaOnnxCreateVoiceActivityDetector(&config, LongestSpeechSeconds + 1));
    } catch (const std::exception &error) { // the model runtime's own exceptions
        Log::write(u"voice detection error "_s + describe(error));
        throw VeskError::noSpeechModel();
    }
    if (!m_implementation->detector) {
        throw VeskError::noSpeechModel();
    }
}

VoiceActivity::~VoiceActivity() = default;

bool VoiceActivity::isSpeech(std::span<const float> window)
{
    const SherpaOnnxVoiceActivityDetector *detector = m_implementation->detector.get();
    SherpaOnnxVoiceActivityDetectorAcceptWaveform(detector, window.data(), static_cast<int>(window.size()));
    const bool detected = SherpaOnnxVoiceActivityDetectorDetected(detector) != 0;
    SherpaOnnxVoiceActivityDetectorClear(detector); // the finished segments: only the answer is of use
    m_implementation->speechSamples = detected ? m_implementation->speechSamples + window.size() : 0;
    if (static_cast<float>(m_implementation->speechSamples)
        > LongestSpeechSeconds * StretchCutter::SampleRate) {
        SherpaOnnxVoiceActivityDetectorReset(detector);
        m_implementation->speechSamples = 0;
    }
    return detected;
}

float energyOf(std::span<const float> window)
{
    return std::inner_product(window.begin(), window.end(), window.begin(), 0.0F);
}

} // namespace vesk
