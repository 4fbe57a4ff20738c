// What runs beside a recording: its start, the capture of the field, and early looks at both.

#include "Dictation/DictationController.h"
#include "Dictation/FocusCapture.h"
#include "Dictation/KeptRecordings.h"
#include "Dictation/Rewrite.h"
#include "Foundation/UserError.h"

#include <QCoroFuture>
#include <QPromise>

namespace vesk {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

/// The person is still pressing the key when the selection of a command is looked at.
constexpr auto SelectionCheckDelay = 300ms;

/// Without leave to use the field's surroundings, only what decides whether and where text may go stays.
std::optional<FocusContext> reduced(std::optional<FocusContext> context, bool isCommand)
{
    if (context) {
        context->windowTitle.reset();
        context->label.reset();
        context->textBefore.reset();
        context->textAfter.reset();
        if (!isCommand) {
            context->selectedText.reset();
        }
    }
    return context;
}

Task<> capture(Accessibility &accessibility, bool isReduced, bool isCommand,
               std::shared_ptr<QPromise<std::optional<FocusContext>>> promise)
{
    auto context = co_await FocusCapture::capture(accessibility, Rewrite::SelectionLimit);
    promise->addResult(isReduced ? reduced(std::move(context), isCommand) : std::move(context));
    promise->finish();
}

/// Ends when the recording has really started.
template <typename Recording>
Task<> ready(std::shared_ptr<Recording> recording)
{
    if (recording->setup()) {
        co_await *recording->setup();
    }
}

} // namespace

DictationController::Session DictationController::startSession(bool isUpload)
{
    const Services &s = m_services;
    if (isUpload) {
        auto recording = std::make_shared<CloudRecording>(
            CloudRecording::Services{s.files, s.converters, s.devices, s.engines});
        recording->start(m_config.microphone, m_level.sender());
        return recording;
    }
    auto live = std::make_shared<LiveDictation>(
        LiveDictation::Services{s.models, s.converters, s.devices, s.engines});
    live->start(m_config.locale, m_config.vocabulary, m_config.microphone, m_level.sender());
    return live;
}

DictationController::Focus DictationController::captureFocus(bool isCommand)
{
    const auto promise = std::make_shared<QPromise<std::optional<FocusContext>>>();
    promise->start();
    launch(u"focus capture"_s,
           capture(m_services.accessibility, !m_config.useAppContext, isCommand, promise));
    return promise->future();
}

/// A failure to start is told while the key is still held.
Task<> DictationController::watchStart(Session session, quint64 number)
{
    const CancellationToken gone = m_gone;
    std::exception_ptr failure;
    try {
        co_await std::visit([](const auto &recording) { return ready(recording); }, session);
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure && !gone.isCancelled() && m_sessionNumber == number && m_session) {
        fail(failure);
    }
}

Task<> DictationController::markWhenAllowed(std::shared_ptr<CloudRecording> recording, Focus focus,
                                            quint64 number)
{
    const CancellationToken gone = m_gone;
    const auto context = co_await focus;
    if (!gone.isCancelled() && m_sessionNumber == number && m_session && context && !context->isSecure) {
        KeptRecordings::mark(recording->url());
    }
}

/// The person learns that nothing is selected before they have spoken for long.
Task<> DictationController::checkSelectionEarly(Focus focus, quint64 number)
{
    const CancellationToken gone = m_gone;
    co_await m_services.clock.after(SelectionCheckDelay);
    const auto context = co_await focus;
    if (gone.isCancelled() || m_sessionNumber != number || !m_session) {
        co_return;
    }
    try {
        Rewrite::selection(context);
    } catch (const UserError &error) {
        abort(error.errorDescription());
    }
}

} // namespace vesk
