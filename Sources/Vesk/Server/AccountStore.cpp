#include "Server/AccountStore.h"

#include "Foundation/Files.h"
#include "Foundation/Log.h"
#include "Server/AccountFile.h"
#include "Server/ServerClient.h"
#include "Server/ServerError.h"

#include <algorithm>
#include <cmath>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// The server's wish within reason: an eager one is not asked more than once a second, and the upper end
/// keeps a damaged number within what a timer can count.
std::chrono::milliseconds pollInterval(double seconds)
{
    constexpr double Shortest = 1;
    constexpr double Longest = 3600;
    return std::chrono::milliseconds(std::llround(std::clamp(seconds, Shortest, Longest) * 1000));
}

} // namespace

AccountStore::AccountStore(ServerConnection &connection, Clock &clock, QObject *parent)
    : QObject(parent)
    , m_connection(connection)
    , m_clock(clock)
{
    if (const auto file = AccountFile::read()) {
        m_account = Account{file->email};
    }
}

AccountStore::~AccountStore() { m_polling.cancel(); }

void AccountStore::setEmail(const QString &email)
{
    if (m_email != email) {
        m_email = email;
        Q_EMIT emailChanged();
    }
}

void AccountStore::setAccount(std::optional<Account> account)
{
    if (m_account != account) {
        m_account = std::move(account);
        Q_EMIT accountChanged();
    }
}

void AccountStore::setSignIn(SignIn signIn)
{
    if (m_signIn != signIn) {
        m_signIn = std::move(signIn);
        Q_EMIT signInChanged();
    }
}

void AccountStore::startSignIn(const QString &email)
{
    const QString address = email.trimmed();
    if (!address.contains(u'@')) {
        setSignIn({SignIn::State::failed, u"Type your email address."_s});
        return;
    }
    m_polling.cancel();
    m_polling = CancellationToken();
    launch(u"sign-in"_s, waitForSignIn(this, m_polling, address));
}

void AccountStore::cancelSignIn()
{
    m_polling.cancel();
    setSignIn({});
}

// `store` is alive as long as the work is not cancelled: its destructor cancels.
Task<> AccountStore::waitForSignIn(AccountStore *store, CancellationToken cancellation, QString email)
{
    ServerConnection &connection = store->m_connection;
    Clock &clock = store->m_clock;
    try {
        store->setSignIn({SignIn::State::sending, {}});
        const Started started = co_await ServerClient::current(connection).startSignIn(email);
        if (cancellation.isCancelled()) {
            co_return;
        }
        store->setSignIn({SignIn::State::waiting, {}});
        while (true) {
            co_await clock.after(pollInterval(started.pollEvery));
            if (cancellation.isCancelled()) {
                co_return;
            }
            const Poll poll = co_await ServerClient::current(connection).poll(started.request);
            if (cancellation.isCancelled()) {
                co_return;
            }
            if (poll.signedIn) {
                store->finishSignIn(*poll.signedIn);
                co_return;
            }
        }
    } catch (const std::exception &error) {
        if (!cancellation.isCancelled()) {
            store->setSignIn({SignIn::State::failed, describe(error)});
        }
    }
}

void AccountStore::finishSignIn(const Poll::SignedIn &signedIn)
{
    AccountFile{signedIn.token, signedIn.account.email}.write();
    setAccount(signedIn.account);
    setSignIn({});
    Log::write(u"signed in"_s);
}

Task<> AccountStore::signOut()
{
    m_polling.cancel();
    // The request is on its way with the token before the token is forgotten; nothing waits for the answer,
    // so that signing out works without a network too.
    Task<> told = tell(ServerClient::current(m_connection));
    try {
        forget();
        setSignIn({});
    } catch (const FileError &error) { // the token is still there: the person must know
        setSignIn({SignIn::State::failed, error.errorDescription()});
    }
    return told;
}

Task<> AccountStore::tell(ServerClient signedOut)
{
    try {
        co_await signedOut.signOut();
    } catch (const UserError &) { // the token is gone from this computer, which is what was asked for
    }
}

void AccountStore::forget()
{
    AccountFile::remove();
    setAccount(std::nullopt);
}

Task<> AccountStore::refresh() { return fetchAccount(this, m_connection); }

Task<> AccountStore::fetchAccount(QPointer<AccountStore> store, ServerConnection &connection)
{
    const ServerClient client = ServerClient::current(connection);
    if (!client.token()) {
        store->setAccount(std::nullopt);
        co_return;
    }
    // The person may have signed out, or in as somebody else, while the server was asked.
    const auto isStillAsked = [&store, &client] {
        const auto file = AccountFile::read();
        return store && file && file->token == client.token();
    };
    try {
        const Account account = co_await client.account();
        if (isStillAsked()) {
            store->setAccount(account);
        }
    } catch (const std::exception &error) {
        const auto *answer = dynamic_cast<const ServerError *>(&error);
        if (!answer || answer->errorCase() != ServerError::Case::signedOut) {
            Log::write(u"account refresh failed " + describe(error));
        } else if (isStillAsked()) {
            store->forget(); // should the file resist, the caller learns it
        }
    }
}

} // namespace vesk
