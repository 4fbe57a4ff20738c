// From a recording to the text in the field, through the server; and the recording that is kept when that
// fails.

#include "Dictation/DictationController.h"
#include "Dictation/FieldPrivacy.h"
#include "Dictation/KeptRecordings.h"
#include "Dictation/Transcriber.h"
#include "Foundation/Log.h"
#include "Server/ServerClient.h"
#include "Server/ServerError.h"

#include <QCoroFuture>
#include <QFileInfo>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

constexpr float AudiblePeak = 0.15F; ///< a recording whose loudest block is quieter holds no words

/// The recording's file. Where it fails nothing is left of it.
Task<QString> finished(std::shared_ptr<CloudRecording> recording)
{
    const QString url = recording->url();
    std::exception_ptr failure;
    try {
        co_await recording->finish();
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure) {
        KeptRecordings::discard(url);
        std::rethrow_exception(failure);
    }
    co_return QString(url);
}

std::optional<QString> joined(const std::optional<QString> &first, const std::optional<QString> &second)
{
    return first && second ? QString(*first + u' ' + *second) : first.has_value() ? first : second;
}

/// In seconds, for the history; 0 when the file does not say.
double lengthOf(AudioFiles &files, const QString &audio)
{
    try {
        return files.openForReading(audio)->duration().value_or(AudioDuration(0)).count();
    } catch (const UserError &) { // the server may still understand it
        return 0;
    }
}

} // namespace

Task<> DictationController::finishUpload(std::shared_ptr<CloudRecording> recording, Job job)
{
    const CancellationToken gone = m_gone;
    const QString file = co_await finished(recording);
    const AudioStats stats = recording->stats();
    const std::optional<QString> shortfall = recording->shortfall();
    recording.reset();
    if (gone.isCancelled()) {
        co_return;
    }
    if (stats.frames < 1 || stats.peak < AudiblePeak) {
        KeptRecordings::discard(file);
        Log::write(u"dictation empty cloud " + stats.summary());
        goIdle(stats.silenceMessage());
        co_return;
    }
    const std::optional<FocusContext> context = co_await job.focus;
    if (gone.isCancelled()) {
        co_return;
    }
    if (job.isCommand && shortfall) { // half an instruction may ask for something else
        KeptRecordings::discard(file);
        goIdle(QString(u"Selection left as it was. " + *shortfall));
        co_return;
    }
    if (job.isCommand) {
        co_await rewrite(file, job);
        co_return;
    }
    if (shortfall) {
        job.note = u"The end of what you said is missing. " + *shortfall;
    }
    Log::write(u"recorded " + stats.summary());
    co_await send(file, context, job);
}

Task<> DictationController::retry(QString audio)
{
    const CancellationToken gone = m_gone;
    Job job;
    job.config = m_config;
    job.start = m_services.clock.monotonic();
    job.focus = captureFocus(false);
    job.isRetry = true;
    job.seconds = lengthOf(m_services.files, audio);
    std::exception_ptr failure;
    try {
        const std::optional<FocusContext> context = co_await job.focus;
        if (gone.isCancelled()) {
            co_return;
        }
        co_await send(audio, context, job);
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure && !gone.isCancelled()) {
        if (QFileInfo::exists(audio)) {
            m_retryAudio = audio; // as it was before
        }
        fail(failure);
    }
}

Task<> DictationController::send(QString audio, std::optional<FocusContext> context, Job job)
{
    const CancellationToken gone = m_gone;
    if (isSecure(context)) {
        co_await sendSecure(audio, *context, job);
        co_return;
    }
    Outcome outcome = {u"cloud"_s, {}, {}, {}};
    std::optional<QString> reason;
    try {
        const std::optional<FocusContext> told = sent(context, job.config);
        const Dictated dictated =
            co_await ServerClient::current(m_services.server).dictation(audio, told, job.config.vocabulary);
        outcome.heard = dictated.raw;
        outcome.text = dictated.text;
    } catch (const ServerError &error) {
        if (error.errorCase() == ServerError::Case::upstream && error.raw() && !error.raw()->isEmpty()) {
            outcome = {u"cloud-raw"_s, *error.raw(), *error.raw(),
                       QString(u"Typed as heard. " + error.errorDescription())};
        } else {
            reason = error.errorDescription();
        }
        if (!gone.isCancelled()) {
            m_display.noticeAccount(error);
        }
    } catch (const UserError &error) {
        reason = error.errorDescription();
    }
    if (gone.isCancelled()) {
        co_return; // the recording is marked: the next launch offers it
    }
    if (reason) {
        keepForRetry(audio, *reason, job);
        co_return;
    }
    KeptRecordings::discard(audio);
    outcome.note = joined(outcome.note, job.note);
    co_await conclude(outcome, context, job);
}

/// What is said into a password field never leaves the computer.
Task<> DictationController::sendSecure(QString audio, FocusContext context, Job job)
{
    const CancellationToken gone = m_gone;
    Outcome outcome = {u"secure"_s, {}, {}, job.note};
    std::exception_ptr failure;
    try {
        const Transcriber::Transcript transcript = co_await Transcriber::transcribe(
            m_services.models, m_services.files, audio, job.config.locale, QStringList());
        outcome.heard = outcome.text = transcript.text;
    } catch (...) {
        failure = std::current_exception();
    }
    if (!failure || !job.isRetry) { // what was kept until now stays kept
        KeptRecordings::discard(audio);
    }
    if (gone.isCancelled()) {
        co_return;
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
    co_await conclude(outcome, context, job);
}

void DictationController::keepForRetry(const QString &audio, const QString &reason, const Job &job)
{
    if (m_retryAudio && *m_retryAudio != audio) {
        KeptRecordings::discard(*m_retryAudio);
    }
    m_retryAudio = audio;
    KeptRecordings::mark(audio);
    Log::write(u"dictation kept for retry total_ms=%1"_s.arg(millisecondsSince(job.start)));
    const QString message = reason + u" The recording is kept: Retry Last Dictation in the menu.";
    goIdle(joined(message, job.note));
}

} // namespace vesk
