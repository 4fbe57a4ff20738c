// From the release of the key to the text in the field, recognised on the machine; and what all roads end
// with.

#include "Dictation/DictationController.h"
#include "Dictation/FieldPrivacy.h"
#include "Dictation/HistoryStore.h"
#include "Dictation/Inserter.h"
#include "Foundation/Graphemes.h"
#include "Foundation/Log.h"
#include "Server/ServerClient.h"
#include "Server/ServerError.h"

#include <QCoroFuture>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

QString appName(const std::optional<FocusContext> &context) { return context ? context->appName : u"-"_s; }

} // namespace

qint64 DictationController::millisecondsSince(Time start) const
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(m_services.clock.monotonic() - start)
        .count();
}

Task<> DictationController::produce(Session session, Job job)
{
    const CancellationToken gone = m_gone;
    std::exception_ptr failure;
    try {
        if (auto *live = std::get_if<std::shared_ptr<LiveDictation>>(&session)) {
            co_await finishOnMac(std::move(*live), job);
        } else {
            co_await finishUpload(std::move(std::get<std::shared_ptr<CloudRecording>>(session)), job);
        }
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure && !gone.isCancelled()) {
        fail(failure);
    }
}

Task<> DictationController::finishOnMac(std::shared_ptr<LiveDictation> live, Job job)
{
    const CancellationToken gone = m_gone;
    const QString heard = co_await live->finish();
    if (gone.isCancelled()) {
        co_return;
    }
    const AudioStats stats = live->stats();
    live.reset(); // nothing of the microphone is kept while the server works
    if (heard.isEmpty()) {
        Log::write(
            u"dictation empty mac speech_ms=%1 %2"_s.arg(millisecondsSince(job.start)).arg(stats.summary()));
        goIdle(stats.silenceMessage());
        co_return;
    }
    const std::optional<FocusContext> context = co_await job.focus;
    if (gone.isCancelled()) {
        co_return;
    }
    Outcome outcome = {u"mac"_s, heard, heard, {}};
    if (job.config.cleanup && !isSecure(context)) {
        outcome = co_await cleanedUp(heard, context, job.config);
        if (gone.isCancelled()) {
            co_return;
        }
    }
    Log::write(u"recorded " + stats.summary());
    co_await conclude(outcome, context, job);
}

Task<DictationController::Outcome>
DictationController::cleanedUp(QString heard, std::optional<FocusContext> context, Config config)
{
    const CancellationToken gone = m_gone;
    Outcome outcome = {u"mac"_s, heard, heard, {}};
    const ServerClient client = ServerClient::current(m_services.server);
    if (!client.token()) {
        outcome.note = u"Typed as heard. Sign in to Vesk in Settings to clean up what you dictate."_s;
        co_return outcome;
    }
    try {
        const std::optional<FocusContext> told = sent(context, config);
        outcome.text = co_await client.cleanup(heard, told, config.vocabulary);
    } catch (const ServerError &error) {
        outcome.note = u"Typed as heard. " + error.errorDescription();
        if (!gone.isCancelled()) {
            m_display.noticeAccount(error);
        }
    } catch (const UserError &error) {
        outcome.note = u"Typed as heard. " + error.errorDescription();
    }
    co_return outcome;
}

/// The text goes into its field and into the history. What cannot be inserted is still there to be copied.
Task<> DictationController::conclude(Outcome outcome, std::optional<FocusContext> context, Job job)
{
    const CancellationToken gone = m_gone;
    std::exception_ptr failure;
    const bool isBlank = outcome.text.trimmed().isEmpty();
    if (!isBlank) {
        const QString text = context
            ? Inserter::spaced(outcome.text.trimmed(), context->textBefore, context->textAfter)
            : outcome.text.trimmed();
        m_lastResult = text;
        try {
            co_await Inserter::paste(m_services.loan, m_services.keys, text);
        } catch (...) {
            failure = std::current_exception();
        }
        if (gone.isCancelled()) {
            co_return;
        }
    }
    remember(outcome, context, job, u"dictation"_s);
    Log::write(u"dictation how=%1 chars=%2>%3 total_ms=%4 app=%5%6"_s.arg(outcome.how)
                   .arg(Graphemes::count(outcome.heard))
                   .arg(Graphemes::count(outcome.text))
                   .arg(millisecondsSince(job.start))
                   .arg(appName(context), outcome.note ? u" note=1"_s : QString()));
    if (failure) {
        std::rethrow_exception(failure);
    }
    goIdle(isBlank ? u"Nothing to insert"_s : outcome.note);
}

void DictationController::remember(const Outcome &outcome, const std::optional<FocusContext> &context,
                                   const Job &job, const QString &kind)
{
    if (!job.config.keepHistory || isSecure(context)) {
        return;
    }
    Dictation dictation;
    dictation.date = m_services.clock.now();
    dictation.kind = kind;
    dictation.appName = context ? context->appName : QString();
    dictation.raw = outcome.heard;
    dictation.text = outcome.text;
    dictation.seconds = job.seconds;
    m_services.history.append(dictation);
}

} // namespace vesk
