#pragma once

#include "Windows/WindowServices.h"

#include <QList>
#include <QObject>
#include <QTimer>

namespace vesk {

/// One thing that dictation asks of this computer or of the person.
struct Requirement {
    enum class Kind { microphone, keyboard, dictationKey, clipboard, speech, account, fields, tray };
    enum class State {
        met,
        advised, ///< dictation works, but not as well as it could
        missing,
    };
    /// What can be done about it here.
    enum class Help { none, useRightCommand, chooseKey, signIn };

    Kind kind;
    State state = State::met;
    QString sentence; ///< the service's own reason, or what is used where all is well
    Help help = Help::none;

    friend bool operator==(const Requirement &, const Requirement &) = default;
};

/// What is missing before the first dictation, and what became of it. Main thread.
class SetupModel final : public QObject {
    Q_OBJECT

public:
    explicit SetupModel(const WindowServices &services, QObject *parent = nullptr);

    /// Asks everybody now. True when nothing is missing; advice does not count.
    bool isReady();

    /// As last asked for, in the order in which a person goes through them.
    const QList<Requirement> &requirements() const { return m_requirements; }

    /// While anybody looks, every service is asked twice a second, but the disk only for what is missing.
    void setWatching(bool isWatching);

    /// Dictation goes to the right Command key, voice commands to the key that dictation had if they would
    /// clash.
    void useRightCommand();

    static QString title(Requirement::Kind kind);

Q_SIGNALS:
    void changed();

private:
    void refresh();
    void lookAgain();
    void askForSpeechModel();
    void compare();
    bool usesCloud() const;
    Requirement microphone() const;
    Requirement dictationKey() const;
    Requirement speech() const;
    Requirement account() const;

    WindowServices m_services;
    QList<Requirement> m_requirements;
    Availability m_speechModel = Availability::available(); ///< as last asked for
    QTimer m_timer;
    int m_looks = 0;
    int m_watchers = 0;
};

} // namespace vesk
