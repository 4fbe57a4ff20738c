// Exchanges without a complete answer.

#include "Server/ServerTest.h"

#include <QSslConfiguration>

namespace vesk {

namespace {

using namespace Qt::StringLiterals;
using Manner = Script::Manner;

/// A hurried connection: what may take 30 seconds takes 300 ms here.
class Offline : public ServerTest {
protected:
    ServerClient hurried() { return {quick, server.baseURL(), VeskServer::validToken()}; }
    Task<QString> cleanup() { return hurried().cleanup(u"um what is private"_s, std::nullopt, {}); }

    ServerConnection quick{host, 0.01};
};

template <typename T>
Task<> noteEnd(QStringList *ended, QString name, Task<T> task)
{
    try {
        co_await task;
    } catch (const ServerError &) {
        ended->append(name);
    }
}

TEST_F(Offline, everyExchangeWithoutACompleteAnswer)
{
    struct Row {
        const char *name;
        Manner manner;
        bool isChunked = false;
        HttpAnswer answer = jsonAnswer(R"({"text":"all of it"})");
    };
    const std::vector<Row> rows = {
        {"closes without an answer", Manner::refuse},
        {"never answers", Manner::silent},
        {"closes within the body", Manner::cutOff},
        {"closes within a chunked body", Manner::cutOff, true},
        {"stops within the body", Manner::stall},
        {"stops within a chunked body", Manner::stall, true},
        {"closes within a failure", Manner::cutOff, false, {500, R"({"error":"upstream"})", {}}},
        {"stops within a failure", Manner::stall, false, {500, R"({"error":"upstream"})", {}}},
        {"ends its chunks within the text", Manner::whole, true, jsonAnswer(R"({"text":"all of)")},
        {"speaks something else", Manner::bare, false, jsonAnswer("SSH-2.0-OpenSSH_9.2\r\n")},
    };
    for (const Row &row : rows) {
        Script script = answering(row.answer);
        script.manner = row.manner;
        script.isChunked = row.isChunked;
        server.script("cleanup", script);
        const auto before = server.requests().size();
        EXPECT_EQ(failure<ServerError>(cleanup()), ServerError::offline()) << row.name;
        EXPECT_EQ(server.requests().size(), before + 1) << row.name << ": sent again";
    }
}

TEST_F(Offline, reasonIsLoggedWithoutTokenOrText)
{
    server.script("cleanup", behaving(Manner::silent));
    failure<ServerError>(cleanup());
    const QList<QByteArray> lines = log().trimmed().split('\n');
    EXPECT_TRUE(lines.back().contains(" server offline: no progress for 300 ms")) << lines.back().constData();
    EXPECT_FALSE(log().contains("private"));
    EXPECT_FALSE(log().contains(VeskServer::validToken().toLatin1()));
}

TEST_F(Offline, operationsWaitInTheOrderOfTheirTimeLimits)
{
    server.scriptEverything(behaving(Manner::silent));
    QStringList ended;
    const Task<> summary = noteEnd(&ended, u"summary"_s, hurried().noteSummary({}, {}));
    const Task<> command =
        noteEnd(&ended, u"command"_s, hurried().command(u"x"_s, TypedInstruction{u"y"_s}, std::nullopt, {}));
    const Task<> cleaned = noteEnd(&ended, u"cleanup"_s, cleanup());
    EXPECT_TRUE(eventually([&ended] { return ended.size() == 3; }));
    EXPECT_EQ(ended, QStringList({u"cleanup"_s, u"command"_s, u"summary"_s}));
}

TEST_F(Offline, slowAnswerThatComesOnIsWaitedFor)
{
    Script script = answering(jsonAnswer(R"({"text":"drop by drop, and on and on"})"));
    script.manner = Manner::drip;
    script.delay = std::chrono::milliseconds(30); // 38 times: longer than the limit
    server.script("cleanup", script);
    ServerConnection patient(host, 0.02);
    const ServerClient asking(patient, server.baseURL(), VeskServer::validToken());
    EXPECT_EQ(awaited(asking.cleanup(u"x"_s, std::nullopt, {})), u"drop by drop, and on and on"_s);
}

TEST_F(Offline, certificateThatNobodyTrusts)
{
    VeskServer secure(VeskServer::Security::selfSigned);
    EXPECT_EQ(
        failure<ServerError>(ServerClient(connection, secure.baseURL(), VeskServer::validToken()).account()),
        ServerError::offline());
    EXPECT_EQ(secure.requests().size(), 0);

    // The same server, once its certificate is trusted: it was the trust that was missing.
    const QSslConfiguration usual = QSslConfiguration::defaultConfiguration();
    QSslConfiguration trusting = usual;
    trusting.addCaCertificate(secure.certificate());
    QSslConfiguration::setDefaultConfiguration(trusting);
    {
        ServerConnection fresh(host);
        EXPECT_EQ(awaited(ServerClient(fresh, secure.baseURL(), VeskServer::validToken()).account()).email,
                  u"someone@example.com"_s);
    }
    QSslConfiguration::setDefaultConfiguration(usual);
}

TEST_F(Offline, connectionThatDiedUnusedIsReplaced)
{
    server.scriptOnce("account", answering({200, R"({"email":"a@b"})", {{"Connection", "close"}}}));
    awaited(client().account());
    EXPECT_EQ(awaited(client().cleanup(u"um hello"_s, std::nullopt, {})), u"Hello."_s);
}

TEST_F(Offline, endOfTheConnectionEndsWhatIsUnderWay)
{
    server.scriptEverything(behaving(Manner::silent));
    auto ending = std::make_unique<ServerConnection>(host);
    const ServerClient client(*ending, server.baseURL(), VeskServer::validToken());
    Task<QString> asked = client.cleanup(u"x"_s, std::nullopt, {});
    Task<Account> alsoAsked = client.account();
    Task<QString> justAsked = client.notesAnswer(u"x"_s, {}, {});
    ASSERT_TRUE(eventually([this] { return server.requests().size() >= 2; }));
    const QByteArray before = log();
    ending.reset();
    ASSERT_TRUE(asked.isReady() && alsoAsked.isReady() && justAsked.isReady());
    EXPECT_EQ(log(), before) << "nobody was offline";
    EXPECT_EQ(failure<ServerError>(std::move(asked)), ServerError::offline());
}

} // namespace

} // namespace vesk
