#include "Platform/Linux/Speech/Recognizer.h"

#include "Foundation/Log.h"
#include "Foundation/Text.h"
#include "Foundation/VeskError.h"
#include "Platform/Linux/Speech/SecondLook.h"
#include "Platform/Linux/Speech/StretchCutter.h"

#include <QFile>

#include <algorithm>
#include <mutex>
#include <random>
#include <sherpa-onnx/c-api/c-api.h>
#include <vector>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// What the recogniser is configured with. It takes C strings, which live here.
struct Configuration {
    QByteArray encoder;
    QByteArray decoder;
    QByteArray joiner;
    QByteArray tokens;
    QByteArray language;
    SherpaOnnxOfflineRecognizerConfig values = {}; // zero is "default" for everything that is not named

    Configuration(const ModelDescription &model, const QString &spokenLanguage)
        : encoder(QFile::encodeName(model.file("encoder"_L1)))
        , decoder(QFile::encodeName(model.file("decoder"_L1)))
        , joiner(QFile::encodeName(model.file("joiner"_L1)))
        , tokens(QFile::encodeName(model.file("tokens"_L1)))
        , language(spokenLanguage.toUtf8())
    {
        constexpr int FeatureDimension = 80; // models that want another say so in their own metadata
        values.feat_config.sample_rate = StretchCutter::SampleRate;
        values.feat_config.feature_dim = FeatureDimension;
        values.decoding_method = "greedy_search";
        values.model_config.num_threads = 2; // measured on two cores; one takes nearly twice as long
        values.model_config.provider = "cpu";
        values.model_config.tokens = tokens.constData();
        nameFiles(model.family);
    }
    Configuration(const Configuration &) = delete;
    Configuration &operator=(const Configuration &) = delete;

private:
    void nameFiles(ModelDescription::Family family)
    {
        auto &config = values.model_config;
        switch (family) {
        case ModelDescription::Family::moonshine:
            config.moonshine.encoder = encoder.constData();
            config.moonshine.merged_decoder = decoder.constData();
            break;
        case ModelDescription::Family::whisper:
            config.whisper.encoder = encoder.constData();
            config.whisper.decoder = decoder.constData();
            config.whisper.language = language.constData();
            config.whisper.task = "transcribe";
            config.whisper.tail_paddings = -1;
            break;
        case ModelDescription::Family::parakeet:
            config.transducer.encoder = encoder.constData();
            config.transducer.decoder = decoder.constData();
            config.transducer.joiner = joiner.constData();
            config.model_type = "nemo_transducer";
            break;
        }
    }
};

/// Calls one of the library's functions that free what another one made.
template <auto Destroy>
struct Destroyer {
    template <typename T>
    void operator()(const T *object) const
    {
        Destroy(object);
    }
};

using RecognizerHandle =
    std::unique_ptr<const SherpaOnnxOfflineRecognizer, Destroyer<SherpaOnnxDestroyOfflineRecognizer>>;
using StreamHandle =
    std::unique_ptr<const SherpaOnnxOfflineStream, Destroyer<SherpaOnnxDestroyOfflineStream>>;
using ResultHandle = std::unique_ptr<const SherpaOnnxOfflineRecognizerResult,
                                     Destroyer<SherpaOnnxDestroyOfflineRecognizerResult>>;

} // namespace

QString RecognizerError::errorDescription() const
{
    return u"The speech recognition model \"%1\" cannot be used. Please install it again."_s.arg(m_modelName);
}

namespace {

void addNoise(std::span<float> sound, float amplitude)
{
    std::minstd_rand
        generator; // NOLINT(bugprone-random-generator-seed): the same text for the same sound, always
    std::uniform_real_distribution<float> noise(-amplitude, amplitude);
    for (float &sample : sound) {
        sample += noise(generator);
    }
}

/// The model runtime's own exceptions become ours; their reason goes to the log.
template <typename Action>
auto withRecognizerErrors(const QString &modelName, const Action &action)
{
    try {
        return action();
    } catch (const UserError &) {
        throw;
    } catch (const std::exception &error) {
        Log::write(u"speech model error "_s + describe(error));
        throw RecognizerError(modelName);
    }
}

} // namespace

struct Recognizer::Implementation {
    QString modelName;
    RecognizerHandle recognizer;
    std::mutex mutex;

    /// What one run of the model gives.
    QString decode(std::span<const float> samples, float noise) const
    {
        // A cut in the middle of a word makes the model repeat itself now and then; silence after it prevents
        // that.
        constexpr std::size_t Tail = StretchCutter::SampleRate * 4 / 10;
        std::vector<float> sound(samples.size() + Tail);
        std::ranges::copy(samples, sound.begin());
        addNoise(std::span(sound).first(samples.size()), noise);

        const StreamHandle stream(SherpaOnnxCreateOfflineStream(recognizer.get()));
        SherpaOnnxAcceptWaveformOffline(stream.get(), StretchCutter::SampleRate, sound.data(),
                                        static_cast<int>(sound.size()));
        SherpaOnnxDecodeOfflineStream(recognizer.get(), stream.get());
        const ResultHandle result(SherpaOnnxGetOfflineStreamResult(stream.get()));
        return result && result->text != nullptr ? QString::fromUtf8(result->text).trimmed() : QString();
    }
};

Recognizer::Recognizer(const ModelDescription &model, const QString &language)
{
    if (!model.isComplete()) {
        throw VeskError::noSpeechModel();
    }
    if (!model.isPlausible()) {
        throw RecognizerError(model.name);
    }
    withRecognizerErrors(model.name, [&] {
        const Configuration configuration(model, language);
        RecognizerHandle loaded(SherpaOnnxCreateOfflineRecognizer(&configuration.values));
        if (!loaded) {
            Log::write(u"speech model refused folder=\"%1\""_s.arg(Text::fileName(model.folder)));
            throw RecognizerError(model.name);
        }
        m_implementation = std::make_unique<Implementation>();
        m_implementation->modelName = model.name;
        m_implementation->recognizer = std::move(loaded);
    });
}

Recognizer::~Recognizer() = default;

QString Recognizer::recognize(std::span<const float> samples)
{
    const std::lock_guard lock(m_implementation->mutex);
    return withRecognizerErrors(m_implementation->modelName, [&] {
        return hearAll(samples, [this](std::span<const float> sound, float noise) {
            return m_implementation->decode(sound, noise);
        });
    });
}

void Recognizer::warmUp()
{
    // Noise, because the model answers digital silence without running.
    std::mt19937 generator; // NOLINT(bugprone-random-generator-seed): the same noise every time is as good
    std::normal_distribution<float> noise(0.0F, 0.03F);
    std::vector<float> sound(2 * StretchCutter::SampleRate);
    std::ranges::generate(sound, [&] { return noise(generator); });
    recognize(sound);
}

} // namespace vesk
