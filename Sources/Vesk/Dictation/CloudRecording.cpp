#include "Dictation/CloudRecording.h"

#include "Dictation/Resampler.h"
#include "Foundation/Log.h"

#include <QDir>
#include <QFile>
#include <QUuid>

#include <mutex>
#include <utility>

namespace vesk {

using namespace Qt::StringLiterals;

struct CloudRecording::Session {
    explicit Session(const Services &needed)
        : services(needed)
        , url(QDir::tempPath() + u"/vesk-" + QUuid::createUuid().toString(QUuid::WithoutBraces) + u".m4a")
        , microphone(needed.devices, needed.engines)
    {
    }

    /// On the thread that blocks arrive on. What cannot be written is missing; the person goes on speaking.
    void write(const AudioBlock &block)
    {
        const std::lock_guard guard(lock);
        if (!file) {
            return;
        }
        try {
            file->write(block);
        } catch (...) {
            if (!failure) {
                failure = std::current_exception();
            }
        }
    }

    /// Closes the file, if it is open; the microphone has stopped.
    void close()
    {
        std::unique_ptr<AudioFileWriter> closing;
        std::exception_ptr reason;
        {
            const std::lock_guard guard(lock);
            closing = std::exchange(file, nullptr);
            reason = std::exchange(failure, nullptr);
        }
        if (!closing) {
            return;
        }
        try {
            closing->close();
        } catch (...) {
            reason = reason ? reason : std::current_exception();
        }
        if (reason) {
            shortfall = describe(reason);
            Log::write(u"recording is incomplete: " + *shortfall);
        }
    }

    Services services;
    const QString url;
    std::optional<Task<>> setup; ///< holds this session: whoever ends it breaks the ring
    std::optional<QString> shortfall;

    std::mutex lock; ///< guards the two below
    std::unique_ptr<AudioFileWriter> file;
    std::exception_ptr failure; ///< the first that writing met
    AudioInput microphone;      ///< last: its blocks go to the file
};

const AudioFileSettings CloudRecording::settings = {{16000, 1}, 32000};

CloudRecording::CloudRecording(const Services &services)
    : m_session(std::make_shared<Session>(services))
{
}

CloudRecording::~CloudRecording() { cancel(); }

const QString &CloudRecording::url() const { return m_session->url; }

void CloudRecording::start(const QString &microphone, Level level)
{
    m_session->setup = setUp(m_session, microphone, std::move(level));
}

const std::optional<Task<>> &CloudRecording::setup() const { return m_session->setup; }

Task<QString> CloudRecording::finish()
{
    m_isOver = true;
    return finishSession(m_session);
}

void CloudRecording::cancel()
{
    if (!std::exchange(m_isOver, true) && m_session->setup) {
        launch(u"cancelling a recording"_s, cancelSession(m_session));
    }
}

void CloudRecording::discard(const QString &url) { QFile::remove(url); }

AudioStats CloudRecording::stats() const { return m_session->microphone.stats(); }

const std::optional<QString> &CloudRecording::shortfall() const { return m_session->shortfall; }

Task<> CloudRecording::setUp(std::shared_ptr<Session> session, QString microphone, Level level)
{
    session->file = session->services.files.openForWriting(session->url, settings);
    const auto resampler =
        std::make_shared<Resampler>(session->file->processingFormat(), session->services.converters);
    const AudioInput::OnBuffer consumer = [session = session.get(), resampler, level](const AudioBlock &block,
                                                                                      float loudness) {
        if (level) {
            level(loudness);
        }
        if (const auto converted = resampler->convert(block)) {
            session->write(*converted);
        }
    };
    std::exception_ptr failure;
    try {
        co_await session->microphone.starting(microphone, consumer);
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure) {
        co_await session->microphone.stopping();
        session->close();
        discard(session->url);
        std::rethrow_exception(failure);
    }
}

Task<QString> CloudRecording::finishSession(std::shared_ptr<Session> session)
{
    if (session->setup) {
        const Task<> setup = std::exchange(session->setup, std::nullopt).value();
        co_await setup;
    }
    co_await session->microphone.stopping();
    session->close();
    co_return session->url;
}

Task<> CloudRecording::cancelSession(std::shared_ptr<Session> session)
{
    const Task<> setup = std::exchange(session->setup, std::nullopt).value();
    session->microphone.stopLater();
    try {
        co_await setup;
    } catch (...) {
        // Nobody waits for this recording any more, so nobody is to be told why it could not begin.
    }
    co_await session->microphone.stopping();
    session->close();
    discard(session->url);
}

} // namespace vesk
