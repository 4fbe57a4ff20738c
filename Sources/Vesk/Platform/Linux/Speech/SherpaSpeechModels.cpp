#include "Platform/Linux/Speech/SherpaSpeechModels.h"

#include "Foundation/VeskError.h"
#include "Platform/Linux/Speech/SherpaAnalyzer.h"
#include "Platform/Linux/Speech/StretchCutter.h"

#include <QCoroFuture>
#include <QFileInfo>
#include <QPromise>
#include <QRegularExpression>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// What the program hears as it is installed, also while its model is missing: that is another failure than a
/// language nobody knows.
constexpr QLatin1StringView InstalledLanguage = "en"_L1;

QString languageOf(const QString &locale) { return locale.section(u'-', 0, 0); }

/// "en_gb" → "en-GB"; nothing for what is no locale identifier.
std::optional<QString> canonicalLocale(const QString &identifier)
{
    static const QRegularExpression pattern(u"^([A-Za-z]{2,3})(?:[-_]([A-Za-z0-9_-]+))?$"_s);
    const auto match = pattern.match(identifier);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const QString rest = match.captured(2).replace(u'_', u'-');
    QString language = match.captured(1).toLower();
    if (rest.isEmpty()) {
        return language;
    }
    return language + u'-' + (rest.size() == 2 ? rest.toUpper() : rest);
}

} // namespace

SherpaSpeechModels::SherpaSpeechModels(SpeechLocations locations, AudioConverters &converters)
    : m_locations(std::move(locations))
    , m_converters(converters)
{
}

SherpaSpeechModels::~SherpaSpeechModels() = default;

std::optional<ModelDescription> SherpaSpeechModels::modelFor(const QString &language) const
{
    std::optional<ModelDescription> incomplete;
    for (const QString &folder : {m_locations.addedModels, m_locations.installedModels}) {
        for (const ModelDescription &model : readModelDescriptions(folder)) {
            if (!model.languages.contains(language)) {
                continue;
            }
            if (model.isComplete()) {
                return model;
            }
            if (!incomplete) {
                incomplete = model;
            }
        }
    }
    return incomplete;
}

QString SherpaSpeechModels::voiceActivityModel() const
{
    return m_locations.installedModels + u"/../silero_vad.onnx";
}

std::optional<QString> SherpaSpeechModels::supportedLocale(const QString &equivalentTo)
{
    auto locale = canonicalLocale(equivalentTo);
    if (locale && (languageOf(*locale) == InstalledLanguage || modelFor(languageOf(*locale)))) {
        return locale;
    }
    return std::nullopt;
}

std::optional<AudioFormat> SherpaSpeechModels::bestAudioFormat(const QString &locale)
{
    const auto model = modelFor(languageOf(locale));
    if (!model || !model->isComplete() || !QFileInfo(voiceActivityModel()).isFile()) {
        return std::nullopt;
    }
    return AudioFormat{StretchCutter::SampleRate, 1};
}

Task<> SherpaSpeechModels::prepare(QString locale)
{
    if (!bestAudioFormat(locale)) {
        throw VeskError::noSpeechModel();
    }
    // Shared, because the pool may still hold the block when this coroutine is gone.
    const auto done = std::make_shared<QPromise<std::exception_ptr>>();
    const QFuture<std::exception_ptr> outcome = done->future();
    done->start();
    m_loading.start([this, locale, done] {
        std::exception_ptr failure;
        try {
            recognizer(locale)->warmUp();
        } catch (...) {
            failure = std::current_exception();
        }
        done->addResult(failure);
        done->finish();
    });
    const std::exception_ptr failure = co_await outcome;
    if (failure) {
        std::rethrow_exception(failure);
    }
}

std::unique_ptr<SpeechAnalyzer> SherpaSpeechModels::makeAnalyzer(const QString &locale)
{
    return std::make_unique<SherpaAnalyzer>(*this, m_converters, locale, voiceActivityModel());
}

std::shared_ptr<Recognizer> SherpaSpeechModels::recognizer(const QString &locale)
{
    const QString language = languageOf(locale);
    const auto model = modelFor(language);
    if (!model) {
        throw VeskError::noSpeechModel();
    }
    const QString key = model->folder + u'\n' + language;
    std::promise<std::shared_ptr<Recognizer>> loading;
    std::shared_future<std::shared_ptr<Recognizer>> loaded;
    bool isOurs = false;
    {
        const std::lock_guard lock(m_mutex);
        const auto [place, isNew] = m_recognizers.try_emplace(key);
        if (isNew) {
            place->second = loading.get_future().share();
        }
        loaded = place->second;
        isOurs = isNew;
    }
    if (isOurs) {
        try {
            loading.set_value(std::make_shared<Recognizer>(*model, language));
        } catch (...) {
            loading.set_exception(std::current_exception());
            const std::lock_guard lock(m_mutex);
            m_recognizers.erase(key);
        }
    }
    return loaded.get();
}

} // namespace vesk
