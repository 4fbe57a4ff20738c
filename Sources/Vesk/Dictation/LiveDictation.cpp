#include "Dictation/LiveDictation.h"

#include "Dictation/Resampler.h"
#include "Dictation/Transcriber.h"
#include "Foundation/VeskError.h"

#include <utility>

namespace vesk {

using namespace Qt::StringLiterals;

struct LiveDictation::Session {
    explicit Session(const Services &needed)
        : services(needed)
        , microphone(needed.devices, needed.engines)
    {
    }

    Services services;
    std::optional<Task<>> setup; ///< holds this session: whoever ends it breaks the ring
    std::unique_ptr<SpeechAnalyzer> analyzer;
    std::optional<Task<QString>> collecting; ///< the text; reads from the analyzer, which must outlive it
    AudioInput microphone;                   ///< last: its blocks go to the analyzer
};

LiveDictation::LiveDictation(const Services &services)
    : m_session(std::make_shared<Session>(services))
{
}

LiveDictation::~LiveDictation() { cancel(); }

void LiveDictation::start(const QString &localeIdentifier, const QStringList &vocabulary,
                          const QString &microphone, Level level)
{
    m_session->setup = setUp(m_session, localeIdentifier, vocabulary, microphone, std::move(level));
}

const std::optional<Task<>> &LiveDictation::setup() const { return m_session->setup; }

Task<QString> LiveDictation::finish()
{
    m_isOver = true;
    return finishSession(m_session);
}

void LiveDictation::cancel()
{
    if (!std::exchange(m_isOver, true) && m_session->setup) {
        launch(u"cancelling a dictation"_s, cancelSession(m_session));
    }
}

AudioStats LiveDictation::stats() const { return m_session->microphone.stats(); }

Task<> LiveDictation::setUp(std::shared_ptr<Session> session, QString localeIdentifier,
                            QStringList vocabulary, QString microphone, Level level)
{
    SpeechModels &models = session->services.models;
    const QString locale = co_await Transcriber::resolve(models, std::move(localeIdentifier));
    const auto format = models.bestAudioFormat(locale);
    if (!format) {
        throw VeskError::noSpeechModel();
    }
    session->analyzer = models.makeAnalyzer(locale);
    SpeechAnalyzer &analyzer = *session->analyzer;
    if (!vocabulary.isEmpty()) {
        analyzer.setContextualStrings(vocabulary);
    }
    // Before the microphone, so that its first block has somewhere to go.
    analyzer.start();
    session->collecting = Transcriber::collect(analyzer);
    const auto resampler = std::make_shared<Resampler>(*format, session->services.converters);
    const AudioInput::OnBuffer consumer = [&analyzer, resampler, level](const AudioBlock &block,
                                                                        float loudness) {
        if (level) {
            level(loudness);
        }
        if (auto converted = resampler->convert(block)) {
            analyzer.feed(std::move(*converted));
        }
    };
    co_await session->microphone.starting(microphone, consumer);
}

Task<QString> LiveDictation::finishSession(std::shared_ptr<Session> session)
{
    if (!session->setup) {
        co_return QString();
    }
    const Task<> setup = std::exchange(session->setup, std::nullopt).value();
    std::exception_ptr failure;
    try {
        co_await setup;
    } catch (...) {
        failure = std::current_exception();
    }
    co_await session->microphone.stopping();
    if (failure) {
        if (session->collecting) {
            session->analyzer->cancelAndFinishNow();
            co_await *session->collecting;
        }
        std::rethrow_exception(failure);
    }
    session->analyzer->finish();
    QString text = co_await *session->collecting;
    co_return text;
}

Task<> LiveDictation::cancelSession(std::shared_ptr<Session> session)
{
    const Task<> setup = std::exchange(session->setup, std::nullopt).value();
    session->microphone.stopLater();
    try {
        co_await setup;
    } catch (...) {
        // Nobody waits for this dictation any more, so nobody is to be told why it could not begin.
    }
    co_await session->microphone.stopping(); // the start-up may have begun it meanwhile
    if (session->collecting) {
        session->analyzer->cancelAndFinishNow();
        try {
            co_await *session->collecting; // it still looks at the analyzer
        } catch (...) {
            // The same.
        }
    }
}

} // namespace vesk
