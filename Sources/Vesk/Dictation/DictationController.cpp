#include "Dictation/DictationController.h"

#include "Dictation/KeptRecordings.h"
#include "Dictation/PasteboardLoan.h"
#include "Foundation/Log.h"
#include "Platform/Pasteboard.h"
#include "Platform/Permissions.h"
#include "Server/ServerClient.h"
#include "Server/ServerError.h"

#include <QCoroFuture>
#include <QPromise>

namespace vesk {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

Task<> copy(PasteboardLoan &loan, Pasteboard &pasteboard, QList<PasteboardItem> items)
{
    const PasteboardLoan::Turn turn =
        co_await loan.turn(); // not into a paste that reads what was there before
    co_await pasteboard.write(PasteboardName::general, items);
}

/// A key held for less is a tap: nobody says anything in it.
constexpr auto ShortPress = 300ms;
/// A press so soon after a tap of the same key starts hands-free dictation.
constexpr auto DoubleTap = 450ms;

constexpr auto MessageTime = 5s;
constexpr auto SettingsMessageTime = 6s;

} // namespace

DictationController::DictationController(const Services &services, Display &display)
    : m_services(services)
    , m_display(display)
    , m_level([this](float level) { m_display.setLevel(level); })
{
    reloadConfig();
}

DictationController::~DictationController()
{
    m_gone.cancel();
    dropSession();
}

void DictationController::reloadConfig()
{
    try {
        m_config = Config::load();
        m_configError.reset();
    } catch (const UserError &error) {
        m_configError = error.errorDescription();
    }
}

bool DictationController::isSignedIn() const
{
    return ServerClient::current(m_services.server).token().has_value();
}

void DictationController::pressed(HotkeyKey key, std::chrono::milliseconds ago)
{
    const Time at = m_services.clock.monotonic() - ago;
    if (const auto *listening = std::get_if<Listening>(&m_phase)) {
        if (listening->isLocked) {
            finish(at);
        }
        return;
    }
    if (!isIdle()) {
        return;
    }
    reloadConfig();
    const bool isLocked = m_lastTap && m_lastTap->first == key && at - m_lastTap->second < DoubleTap;
    m_lastTap.reset();
    begin(key == m_config.commandKey(), {isLocked, at});
}

void DictationController::released(HotkeyKey key, std::chrono::milliseconds ago)
{
    const auto *listening = std::get_if<Listening>(&m_phase);
    if (listening == nullptr || listening->isLocked) {
        return;
    }
    const Time at = m_services.clock.monotonic() - ago;
    if (at - listening->since < ShortPress) {
        abort({});
        m_lastTap = {key, at};
    } else {
        finish(at);
    }
}

void DictationController::otherKeyUsed()
{
    const auto *listening = std::get_if<Listening>(&m_phase);
    if (listening != nullptr && !listening->isLocked) {
        abort({});
        m_lastTap.reset();
    }
}

void DictationController::begin(bool isCommand, Listening listening)
{
    if (m_configError) {
        m_display.flash(*m_configError, SettingsMessageTime);
        return;
    }
    if (!m_services.permissions.accessibility().isAvailable()
        || !m_services.permissions.microphone().isAvailable()) {
        m_display.openSetup();
        return;
    }
    const bool signedIn = isSignedIn();
    if (isCommand && !signedIn) {
        m_display.flash(u"Sign in to Vesk to use voice commands"_s, MessageTime);
        return;
    }
    const quint64 number = ++m_sessionNumber;
    const Session session = startSession(isCommand || (m_config.speech == u"cloud" && signedIn));
    m_phase = listening;
    m_session = session;
    m_isCommand = isCommand;
    const Focus focus = captureFocus(isCommand);
    m_focus = focus;
    m_display.setIndicator(Indicator::listening);
    m_display.showListening(listening.isLocked, isCommand);
    launch(u"recording"_s, watchStart(session, number));
    if (!m_session) {
        return; // it failed at once, and the person knows
    }
    if (isCommand) {
        launch(u"selection"_s, checkSelectionEarly(focus, number));
    } else if (const auto *recording = std::get_if<std::shared_ptr<CloudRecording>>(&session)) {
        launch(u"recording"_s, markWhenAllowed(*recording, focus, number));
    }
}

void DictationController::finish(Time at)
{
    if (!m_session) {
        return;
    }
    Session session = std::move(*m_session);
    m_session.reset();
    Job job;
    job.config = m_config;
    job.focus = std::exchange(m_focus, {});
    job.isCommand = m_isCommand;
    job.start = at;
    job.seconds = std::chrono::duration<double>(job.start - std::get<Listening>(m_phase).since).count();
    m_phase = Working();
    m_display.setIndicator(Indicator::working);
    m_display.showText(m_isCommand ? u"Rewriting the selection"_s : u"Writing it down"_s, true);
    launch(u"dictation"_s, produce(std::move(session), std::move(job)));
}

void DictationController::stopListening(const std::optional<QString> &message)
{
    if (std::holds_alternative<Listening>(m_phase)) {
        abort(message);
    }
}

void DictationController::dropSession()
{
    if (!m_session) {
        return;
    }
    const Session session = std::move(*m_session);
    m_session.reset();
    std::visit([](const auto &recording) { recording->cancel(); }, session);
    if (const auto *recording = std::get_if<std::shared_ptr<CloudRecording>>(&session)) {
        KeptRecordings::discard(
            (*recording)->url()); // its mark; the file itself goes when its start has ended
    }
}

void DictationController::abort(const std::optional<QString> &message)
{
    dropSession();
    m_focus = {};
    goIdle(message);
}

void DictationController::fail(const std::exception_ptr &error)
{
    const QString message = describe(error);
    Log::write(u"error " + message);
    abort(message);
}

void DictationController::goIdle(const std::optional<QString> &message)
{
    m_phase = Idle();
    m_display.setIndicator(Indicator::idle);
    if (message) {
        m_display.flash(*message, MessageTime);
    } else {
        m_display.hide();
    }
}

void DictationController::retryLast()
{
    if (!isIdle() || !m_retryAudio) {
        return;
    }
    reloadConfig();
    const QString audio = *m_retryAudio;
    m_retryAudio.reset();
    m_phase = Working();
    m_display.setIndicator(Indicator::working);
    m_display.showText(u"Trying again"_s, true);
    launch(u"retry"_s, retry(audio));
}

void DictationController::copyLastText()
{
    if (!m_lastResult) {
        return;
    }
    const PasteboardItem item = {{{QLatin1String(PasteboardType::String), m_lastResult->toUtf8(), {}}}};
    launch(u"copy"_s, copy(m_services.loan, m_services.pasteboard, {item}));
}

} // namespace vesk
