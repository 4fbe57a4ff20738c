#pragma once

#include "Dictation/CloudRecording.h"
#include "Dictation/LevelRelay.h"
#include "Dictation/LiveDictation.h"
#include "Foundation/Cancellation.h"
#include "Foundation/Config.h"
#include "Foundation/FocusContext.h"
#include "Platform/Clock.h"

#include <QFuture>

#include <variant>

namespace vesk {

class Accessibility;
class HistoryStore;
class KeyPoster;
class Pasteboard;
class PasteboardLoan;
class Permissions;
class ServerConnection;
class ServerError;
struct Commanded;

/// From the hotkey to the words in somebody else's program: one recording at a time, recognised on the
/// machine or by the server, put into shape and inserted; or, for a voice command, the instruction by which a
/// selection is rewritten. Knows services and stores, no window. Main thread; whatever it waits for, it may
/// be destroyed.
class DictationController {
public:
    enum class Indicator { idle, listening, working };

    /// What the person sees of it.
    class Display {
    public:
        virtual ~Display() = default;
        virtual void setIndicator(Indicator indicator) = 0;
        virtual void showListening(bool locked, bool command) = 0;
        virtual void setLevel(float level) = 0;
        virtual void showText(const QString &text, bool spinning) = 0;
        virtual void flash(const QString &text, std::chrono::milliseconds time) = 0;
        virtual void hide() = 0;
        /// Something has to be allowed first.
        virtual void openSetup() = 0;
        /// The server may have ended the sign-in.
        virtual void noticeAccount(const ServerError &error) = 0;
    };

    /// All of it outlives the controller.
    struct Services {
        Clock &clock;
        const Permissions &permissions;
        SpeechModels &models;
        AudioFiles &files;
        AudioConverters &converters;
        const AudioDevices &devices;
        AudioEngines &engines;
        Accessibility &accessibility;
        Pasteboard &pasteboard;
        PasteboardLoan &loan;
        KeyPoster &keys;
        ServerConnection &server;
        HistoryStore &history;
    };

    DictationController(const Services &services, Display &display);
    ~DictationController();
    DictationController(const DictationController &) = delete;
    DictationController &operator=(const DictationController &) = delete;

    /// `ago` is how long the keyboard's word has waited for us: a tap and a hold are told apart by the
    /// fingers.
    void pressed(HotkeyKey key, std::chrono::milliseconds ago = {});
    void released(HotkeyKey key, std::chrono::milliseconds ago = {});
    void otherKeyUsed();

    /// Drops what is being recorded, if anything is: nobody can end it any more.
    void stopListening(const std::optional<QString> &message);

    /// Uploads the kept recording again; nothing while something runs or nothing is kept.
    void retryLast();
    /// Puts the last text on the pasteboard, to stay.
    void copyLastText();

    bool isIdle() const { return std::holds_alternative<Idle>(m_phase); }
    bool canRetry() const { return m_retryAudio.has_value(); }
    bool hasLastText() const { return m_lastResult.has_value(); }

    /// At launch: what an earlier process kept.
    void offerRetry(const QString &recording) { m_retryAudio = recording; }

    /// Reads the settings. When that fails the former ones stay, and configError() says why.
    void reloadConfig();
    const Config &config() const { return m_config; }
    const std::optional<QString> &configError() const { return m_configError; }

private:
    using Time = Clock::Monotonic;
    using Session = std::variant<std::shared_ptr<LiveDictation>, std::shared_ptr<CloudRecording>>;
    /// A Task gives its value away to the first who awaits it; this one is asked by several.
    using Focus = QFuture<std::optional<FocusContext>>;

    struct Idle {};
    struct Listening {
        bool isLocked = false; ///< hands-free
        Time since;
    };
    struct Working {};
    using Phase = std::variant<Idle, Listening, Working>;

    /// What one dictation or command knows at its end.
    struct Job {
        Config config;
        Focus focus;
        bool isCommand = false;
        bool isRetry = false;
        Time start;                  ///< the release: where every logged time begins
        double seconds = 0;          ///< length of the recording
        std::optional<QString> note; ///< for the person, whatever comes of it
    };
    struct Outcome {
        QString how; ///< for the log
        QString heard;
        QString text;
        std::optional<QString> note; ///< for the person
    };

    // DictationController.cpp: the phases
    void begin(bool isCommand, Listening listening);
    void finish(Time at);
    void abort(const std::optional<QString> &message);
    void fail(const std::exception_ptr &error);
    void dropSession();
    void goIdle(const std::optional<QString> &message);
    bool isSignedIn() const;

    // DictationStart.cpp: beside a recording
    Session startSession(bool isUpload);
    Task<> watchStart(Session session, quint64 number);
    Task<> markWhenAllowed(std::shared_ptr<CloudRecording> recording, Focus focus, quint64 number);
    Task<> checkSelectionEarly(Focus focus, quint64 number);
    Focus captureFocus(bool isCommand);

    // DictationRoads.cpp: from the release to the text
    Task<> produce(Session session, Job job);
    Task<> finishOnMac(std::shared_ptr<LiveDictation> live, Job job);
    Task<Outcome> cleanedUp(QString heard, std::optional<FocusContext> context, Config config);
    Task<> conclude(Outcome outcome, std::optional<FocusContext> context, Job job);
    void remember(const Outcome &outcome, const std::optional<FocusContext> &context, const Job &job,
                  const QString &kind);
    qint64 millisecondsSince(Time start) const;

    // UploadRoad.cpp
    Task<> finishUpload(std::shared_ptr<CloudRecording> recording, Job job);
    Task<> send(QString audio, std::optional<FocusContext> context, Job job);
    Task<> sendSecure(QString audio, FocusContext context, Job job);
    Task<> retry(QString audio);
    void keepForRetry(const QString &audio, const QString &reason, const Job &job);

    // CommandRoad.cpp
    Task<> rewrite(QString audio, Job job);
    Task<> replaceSelection(QString audio, FocusContext context, QString selection, Job job);
    Task<std::optional<Commanded>> commanded(QString audio, FocusContext context, QString selection,
                                             Config config);

    Services m_services;
    Display &m_display;
    LevelRelay m_level;

    Config m_config;
    std::optional<QString> m_configError;
    Phase m_phase = Idle();
    std::optional<Session> m_session;
    quint64 m_sessionNumber = 0; ///< grows with every session: tells a task whether its own still runs
    std::optional<QString> m_retryAudio;
    Focus m_focus;
    bool m_isCommand = false;
    std::optional<std::pair<HotkeyKey, Time>> m_lastTap;
    std::optional<QString> m_lastResult;
    CancellationToken m_gone; ///< for what still waits when the controller has ended
};

} // namespace vesk
