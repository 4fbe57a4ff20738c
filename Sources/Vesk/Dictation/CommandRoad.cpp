// A voice command after the release of its key: the selection is rewritten by what was said.

#include "Dictation/DictationController.h"
#include "Dictation/FieldPrivacy.h"
#include "Dictation/FocusCapture.h"
#include "Dictation/Inserter.h"
#include "Dictation/KeptRecordings.h"
#include "Dictation/Rewrite.h"
#include "Foundation/Graphemes.h"
#include "Foundation/Log.h"
#include "Foundation/VeskError.h"
#include "Server/ServerClient.h"
#include "Server/ServerError.h"

#include <QCoroFuture>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// The recording of a command is never kept, whatever ends it.
class RecordingToDiscard {
public:
    explicit RecordingToDiscard(QString recording)
        : m_recording(std::move(recording))
    {
    }
    ~RecordingToDiscard() { KeptRecordings::discard(m_recording); }
    RecordingToDiscard(const RecordingToDiscard &) = delete;
    RecordingToDiscard &operator=(const RecordingToDiscard &) = delete;

private:
    QString m_recording;
};

bool isSameSelection(const std::optional<FocusContext> &now, const FocusContext &before)
{
    return now && now->bundleID == before.bundleID && now->appName == before.appName
        && now->selectedText == before.selectedText;
}

} // namespace

Task<> DictationController::rewrite(QString audio, Job job)
{
    const CancellationToken gone = m_gone;
    const RecordingToDiscard recording(audio);
    const std::optional<FocusContext> context = co_await job.focus;
    if (gone.isCancelled()) {
        co_return;
    }
    QString selection;
    try {
        selection = Rewrite::selection(context);
    } catch (const UserError &error) {
        goIdle(error.errorDescription());
        co_return;
    }
    co_await replaceSelection(audio, *context, selection, job);
}

/// What the server made of it; nothing when it did not, which the person has been told then.
Task<std::optional<Commanded>> DictationController::commanded(QString audio, FocusContext context,
                                                              QString selection, Config config)
{
    const CancellationToken gone = m_gone;
    const std::optional<FocusContext> told = sent(context, config);
    const Instruction instruction = SpokenInstruction{audio};
    QString failure;
    try {
        std::optional<Commanded> commanded = co_await ServerClient::current(m_services.server)
                                                 .command(selection, instruction, told, config.vocabulary);
        co_return commanded;
    } catch (const ServerError &error) {
        failure = error.errorDescription();
        if (!gone.isCancelled()) {
            m_display.noticeAccount(error);
        }
    } catch (const UserError &error) {
        failure = error.errorDescription();
    }
    if (!gone.isCancelled()) {
        Log::write(u"command error app=%1 %2"_s.arg(context.appName, failure));
        goIdle(QString(u"Selection left as it was. " + failure));
    }
    co_return std::nullopt;
}

Task<> DictationController::replaceSelection(QString audio, FocusContext context, QString selection, Job job)
{
    const CancellationToken gone = m_gone;
    const Time start = m_services.clock.monotonic();
    const std::optional<Commanded> answer = co_await commanded(audio, context, selection, job.config);
    if (gone.isCancelled() || !answer) {
        co_return;
    }
    const qint64 serverTime = millisecondsSince(start);
    m_lastResult = answer->text;
    const auto log = [&](const QString &result) {
        Log::write(u"command chars=%1>%2 instruction_chars=%3 server_ms=%4 total_ms=%5 app=%6 result=%7"_s
                       .arg(Graphemes::count(selection))
                       .arg(Graphemes::count(answer->text))
                       .arg(Graphemes::count(answer->instruction))
                       .arg(serverTime)
                       .arg(millisecondsSince(job.start))
                       .arg(context.appName, result));
    };
    if (answer->isUnchanged) {
        log(u"unchanged"_s);
        goIdle(u"Selection left as it was: no change to make"_s);
        co_return;
    }
    const auto now = co_await FocusCapture::capture(m_services.accessibility, Rewrite::SelectionLimit);
    if (gone.isCancelled()) {
        co_return;
    }
    if (!isSameSelection(now, context)) {
        log(u"moved"_s);
        goIdle(VeskError::selectionChanged().errorDescription());
        co_return;
    }
    co_await Inserter::paste(m_services.loan, m_services.keys,
                             Inserter::keepingEdges(selection, answer->text));
    if (gone.isCancelled()) {
        co_return;
    }
    remember({{}, answer->instruction, answer->text, {}}, context, job, u"command"_s);
    log(u"replaced"_s);
    goIdle({});
}

} // namespace vesk
