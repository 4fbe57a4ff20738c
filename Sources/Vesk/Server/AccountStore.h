#pragma once

#include "Foundation/Cancellation.h"
#include "Platform/Clock.h"
#include "Server/ServerOperations.h"

#include <QObject>
#include <QPointer>

namespace vesk {

class ServerClient;
class ServerConnection;

/// How far a sign-in has come.
struct SignIn {
    enum class State {
        idle,
        sending, ///< the letter is being asked for
        waiting, ///< the letter is sent; its link has not been pressed yet
        failed,
    };
    State state = State::idle;
    QString message; ///< a sentence for the person, only with `failed`

    friend bool operator==(const SignIn &, const SignIn &) = default;
};

/// Who is signed in, and the way there: what the settings and the menu watch. Main thread. May go at any
/// time; what it started then ends by itself. Connection and clock must outlive it.
class AccountStore final : public QObject {
    Q_OBJECT

public:
    AccountStore(ServerConnection &connection, Clock &clock, QObject *parent = nullptr);
    ~AccountStore() override;

    /// As far as it is known: from the stored sign-in at first, from the server after refresh().
    const std::optional<Account> &account() const { return m_account; }
    const SignIn &signIn() const { return m_signIn; }

    /// The address that is being typed.
    const QString &email() const { return m_email; }
    void setEmail(const QString &email);

    /// Has a letter sent and waits, for as long as it takes, until its link is pressed. Replaces a sign-in
    /// that is under way. Failures show in signIn().
    void startSignIn(const QString &email);

    /// Gives up a sign-in that is under way, or the message of one that failed.
    void cancelSignIn();

    /// Forgets the sign-in at once and tells the server. Ends when the server has answered, or cannot be
    /// reached, which does not matter.
    Task<> signOut();

    /// Asks the server who is signed in. A sign-in that the server no longer knows is forgotten; other
    /// failures change nothing and go to the log.
    Task<> refresh();

Q_SIGNALS:
    void accountChanged();
    void signInChanged();
    void emailChanged();

private:
    static Task<> waitForSignIn(AccountStore *store, CancellationToken cancellation, QString email);
    static Task<> fetchAccount(QPointer<AccountStore> store, ServerConnection &connection);
    static Task<> tell(ServerClient signedOut);

    void setAccount(std::optional<Account> account);
    void setSignIn(SignIn signIn);
    void finishSignIn(const Poll::SignedIn &signedIn);
    void forget();

    ServerConnection &m_connection;
    Clock &m_clock;
    std::optional<Account> m_account;
    SignIn m_signIn;
    QString m_email;
    CancellationToken m_polling;
};

} // namespace vesk
