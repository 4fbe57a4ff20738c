#include "Server/AccountStore.h"

#include "Server/ServerTest.h"
#include "Support/ManualClock.h"

#include <QDir>
#include <QFileInfo>

#include <gmock/gmock.h>

namespace vesk {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using State = SignIn::State;
using testing::ElementsAre;

class Accounts : public ServerTest {
protected:
    Accounts() { pointSettingsAtServer(); }

    static AccountFile validFile() { return {VeskServer::validToken(), u"old@example.com"_s}; }

    bool reaches(State state)
    {
        return eventually([this, state] { return store->signIn().state == state; });
    }
    /// Until the store waits for the next poll.
    bool waits()
    {
        return eventually([this] { return !clock.waiting().empty(); });
    }
    size_t polls() const { return server.requests("auth/poll").size(); }
    /// A round trip: what was asked before it has been answered after it.
    void settleExchanges() { awaited(client().account()); }

    ManualClock clock;
    std::unique_ptr<AccountStore> store = std::make_unique<AccountStore>(connection, clock);
};

TEST_F(Accounts, signInPollsUntilTheLinkIsPressed)
{
    server.pendingPolls = 2;
    std::vector<State> states;
    QObject::connect(store.get(), &AccountStore::signInChanged,
                     [&] { states.push_back(store->signIn().state); });
    store->startSignIn(u" \n new@example.com\t"_s);
    for (size_t poll = 0; poll < 3; ++poll) {
        ASSERT_TRUE(waits());
        EXPECT_EQ(polls(), poll);
        EXPECT_FALSE(QFileInfo::exists(AccountFile::path()));
        clock.advance(1s);
    }
    ASSERT_TRUE(reaches(State::idle));
    EXPECT_THAT(states, ElementsAre(State::sending, State::waiting, State::idle));
    EXPECT_EQ(server.requests("auth/start").at(0).json().value("email"_L1), u"new@example.com"_s);
    EXPECT_EQ(store->account(), Account{u"new@example.com"_s});
    EXPECT_EQ(polls(), 3);

    const auto file = AccountFile::read();
    ASSERT_TRUE(file);
    EXPECT_EQ(file->email, u"new@example.com"_s);
    EXPECT_EQ(QFile::permissions(AccountFile::path()) & ~(QFile::ReadUser | QFile::WriteUser),
              QFile::ReadOwner | QFile::WriteOwner);
    EXPECT_EQ(awaited(ServerClient::current(connection).cleanup(u"um hello"_s, std::nullopt, {})),
              u"Hello."_s);

    EXPECT_TRUE(log().trimmed().endsWith(" signed in"));
    EXPECT_FALSE(log().contains("example.com"));
    EXPECT_FALSE(log().contains(file->token.toLatin1()));
}

TEST_F(Accounts, aSignInGivenUpEndsInSilence)
{
    store->startSignIn(u"new@example.com"_s);
    ASSERT_TRUE(waits());
    store->cancelSignIn();
    EXPECT_EQ(store->signIn(), SignIn());
    clock.advance(5s);
    settleExchanges();
    EXPECT_EQ(polls(), 0);
    EXPECT_EQ(store->signIn(), SignIn());

    store->startSignIn(u"no address"_s);
    EXPECT_EQ(store->signIn(), (SignIn{State::failed, u"Type your email address."_s}));
    settleExchanges();
    EXPECT_EQ(server.requests("auth/start").size(), 1) << "only the first was sent";
    store->cancelSignIn();
    EXPECT_EQ(store->signIn(), SignIn()) << "its message goes too";
}

TEST_F(Accounts, pollsAsOftenAsTheServerWishesWithinReason)
{
    for (const auto &[wish, interval] :
         {std::pair(-5.0, 1000ms), std::pair(2.5, 2500ms), std::pair(1e300, 3600000ms)}) {
        server.pollEvery = wish;
        server.pendingPolls = 1;
        store->startSignIn(u"a@b"_s);
        for (int poll = 0; poll < 2; ++poll) {
            ASSERT_TRUE(waits());
            EXPECT_THAT(clock.waiting(), ElementsAre(interval)) << wish;
            clock.advance(interval);
        }
        ASSERT_TRUE(reaches(State::idle));
    }
}

TEST_F(Accounts, secondSignInStopsTheFirst)
{
    server.pendingPolls = 1000;
    store->startSignIn(u"first@b"_s);
    ASSERT_TRUE(waits());
    store->startSignIn(u"second@b"_s);
    ASSERT_TRUE(eventually([this] { return clock.waiting().size() == 2; }));
    clock.advance(1s); // the first wakes for the last time
    ASSERT_TRUE(waits());
    EXPECT_EQ(clock.waiting().size(), 1);
    EXPECT_EQ(polls(), 1);
}

TEST_F(Accounts, anyErrorEndsTheSignInAlsoATokenThatCannotBeKept)
{
    const QString offline = ServerError::offline().errorDescription();
    const std::tuple<QByteArray, Script, QString> rows[] = {
        {"auth/start", answering({429, R"({"error":"busy","message":"Too many letters."})", {}}),
         u"Too many letters."_s},
        {"auth/start", behaving(Script::Manner::refuse), offline},
        {"auth/poll", answering({410, R"({"error":"expired","message":"Too late."})", {}}), u"Too late."_s},
        {"auth/poll", behaving(Script::Manner::refuse), offline},
        {"auth/poll", answering(jsonAnswer(R"({"token":"t","account":{}})")),
         u"\"account.email\" must be a text, not nothing"_s},
    };
    for (const auto &[path, script, message] : rows) {
        server.scriptOnce(path, script);
        store->startSignIn(u"a@b"_s);
        if (path == "auth/poll") {
            ASSERT_TRUE(waits());
            clock.advance(1s);
        }
        ASSERT_TRUE(reaches(State::failed));
        EXPECT_EQ(store->signIn().message, message);
        EXPECT_TRUE(clock.waiting().empty());
        EXPECT_FALSE(QFileInfo::exists(AccountFile::path()));
    }
    ASSERT_TRUE(QDir().mkpath(AccountFile::path())); // a folder in the place of the token's file
    server.pendingPolls = 0;
    store->startSignIn(u"a@b"_s);
    ASSERT_TRUE(waits());
    clock.advance(1s);
    ASSERT_TRUE(reaches(State::failed));
    EXPECT_TRUE(store->signIn().message.contains(u"account.json cannot be written"_s));
    EXPECT_EQ(store->account(), std::nullopt);
    ASSERT_TRUE(QDir().rmdir(AccountFile::path()));
}

TEST_F(Accounts, signOutForgetsAtOnceAndTellsTheServer)
{
    validFile().write();
    store = std::make_unique<AccountStore>(connection, clock);
    EXPECT_EQ(store->account(), Account{u"old@example.com"_s});
    Task<> told = store->signOut();
    EXPECT_FALSE(QFileInfo::exists(AccountFile::path()));
    EXPECT_EQ(store->account(), std::nullopt);
    awaited(std::move(told));
    ASSERT_EQ(server.requests("auth/sign-out").size(), 1);
    EXPECT_EQ(header(server.requests()[0].headers, "Authorization"), "Bearer loopback-token");

    validFile().write(); // the server knows the token no longer, which is ignored
    awaited(store->signOut());
    EXPECT_FALSE(QFileInfo::exists(AccountFile::path()));
    EXPECT_EQ(store->signIn(), SignIn());
}

TEST_F(Accounts, signOutWhileAPollIsAnsweredStaysSignedOut)
{
    server.pendingPolls = 0;
    Script slow;
    slow.delay = 50ms;
    server.script("auth/poll", slow);
    store->startSignIn(u"a@b"_s);
    ASSERT_TRUE(waits());
    clock.advance(1s);
    ASSERT_TRUE(eventually([this] { return polls() == 1; }));
    awaited(store->signOut());
    EXPECT_EQ(store->signIn(), SignIn());
    // The slow poll, and then one as slow behind it: the first has been answered when the second is.
    awaited(client().poll(u"sign-in-1"_s));
    EXPECT_EQ(store->account(), std::nullopt);
    EXPECT_FALSE(QFileInfo::exists(AccountFile::path()));
    EXPECT_TRUE(clock.waiting().empty());
}

TEST_F(Accounts, refreshForgetsOnlyASignInThatTheServerNoLongerKnows)
{
    validFile().write();
    awaited(store->refresh());
    const Account known{u"someone@example.com"_s};
    EXPECT_EQ(store->account(), known) << "what the server says";
    for (const auto &[answer, description] : {
             std::pair(HttpAnswer{401, R"({"error":"expired","message":"Pay."})", {}}, "Pay."),
             std::pair(HttpAnswer{200, "{}", {}}, "\"email\" must be a text, not nothing"),
         }) {
        server.scriptOnce("account", answering(answer));
        awaited(store->refresh());
        EXPECT_EQ(store->account(), known);
        EXPECT_TRUE(AccountFile::read());
        EXPECT_TRUE(
            log().trimmed().endsWith(QByteArray(QByteArray(" account refresh failed ") + description)));
    }
    server.scriptOnce("account", answering({401, R"({"error":"signed_out"})", {}}));
    awaited(store->refresh());
    EXPECT_EQ(store->account(), std::nullopt);
    EXPECT_FALSE(QFileInfo::exists(AccountFile::path()));
    const std::size_t asked = server.requests("account").size();
    awaited(store->refresh());
    EXPECT_EQ(server.requests("account").size(), asked) << "asked without a token";
}

TEST_F(Accounts, refreshAnsweredAfterAnotherSignInChangesNothing)
{
    for (const int status : {200, 401}) {
        validFile().write();
        Script slow = answering({status, R"({"email":"old@example.com","error":"signed_out"})", {}});
        slow.delay = 50ms;
        server.scriptOnce("account", slow);
        Task<> refreshing = store->refresh();
        AccountFile{u"another"_s, u"new@example.com"_s}.write();
        const auto before = store->account();
        awaited(std::move(refreshing));
        EXPECT_EQ(store->account(), before);
        ASSERT_TRUE(AccountFile::read());
        EXPECT_EQ(AccountFile::read()->token, u"another"_s);
    }
}

TEST_F(Accounts, storeMayGoWhileSomethingIsUnderWay)
{
    // Waiting for the next poll.
    store->startSignIn(u"a@b"_s);
    ASSERT_TRUE(waits());
    store.reset();
    clock.advance(1s);
    settleExchanges();
    EXPECT_EQ(polls(), 0);

    // Waiting for answers.
    validFile().write();
    store = std::make_unique<AccountStore>(connection, clock);
    store->startSignIn(u"a@b"_s);
    Task<> refreshing = store->refresh();
    store.reset();
    awaited(std::move(refreshing));
    settleExchanges();
    EXPECT_TRUE(clock.waiting().empty());
    EXPECT_EQ(AccountFile::read()->email, u"old@example.com"_s);
}

} // namespace

} // namespace vesk
