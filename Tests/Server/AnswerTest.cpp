// What comes back: errors by status and body, records, and answers that are none.

#include "Server/ServerTest.h"

#include <QRandomGenerator>

namespace vesk {

namespace {

using namespace Qt::StringLiterals;

class Answer : public ServerTest {};

TEST_F(Answer, failureIsMappedByStatusAndBody)
{
    const auto plain = [](int status) {
        return ServerError::other(u"The Vesk server answered %1."_s.arg(status));
    };
    const std::vector<std::tuple<int, QByteArray, ServerError>> rows = {
        {500, R"({"error":"upstream","message":"The model is busy.","raw":"503 from m1"})",
         ServerError::upstream(u"The model is busy."_s, u"503 from m1"_s)},
        {502, R"({"error":"upstream"})",
         ServerError::upstream(u"The Vesk server answered 502."_s, std::nullopt)},
        {401, R"({"error":"signed_out"})", ServerError::signedOut(u"The Vesk server answered 401."_s)},
        {400, R"({"error":"signed_out","message":"Sign in."})", ServerError::signedOut(u"Sign in."_s)},
        {402, R"({"error":"expired","message":"The trial is over."})",
         ServerError::expired(u"The trial is over."_s)},
        {403, R"({"error":"Signed_Out","message":"No."})", ServerError::other(u"No."_s)},
        {409, R"({"error":null,"message":null})", plain(409)},
        {422, R"({"error":"expired","message":7})", plain(422)},
        {429, "", plain(429)},
        {502, "<html><body>Bad gateway</body></html>", plain(502)},
        {304, "", plain(304)},
    };
    for (const auto &[status, body, expected] : rows) {
        SCOPED_TRACE(testing::Message() << status << body.constData());
        server.scriptOnce("account", answering({status, body, {}}));
        server.scriptOnce("cleanup", answering({status, body, {}}));
        EXPECT_EQ(failure<ServerError>(client().account()), expected);
        EXPECT_EQ(failure<ServerError>(client().cleanup(u"x"_s, std::nullopt, {})), expected);
    }
    EXPECT_EQ(server.requests().size(), 2 * rows.size()) << "something was sent again";
}

TEST_F(Answer, emptySuccessIsAnEmptyRecord)
{
    for (const int status : {200, 204, 299}) {
        server.script("auth/sign-out", answering({status, "", {}}));
        server.script("auth/poll", answering({status, "", {}}));
        EXPECT_EQ(failure<std::exception>(client().signOut()), std::nullopt) << status;
        EXPECT_FALSE(awaited(client().poll(u"r"_s)).signedIn) << status;
    }
}

TEST_F(Answer, successThatDoesNotFitIsADecodingError)
{
    for (const char *body : {"", "{}", "<html></html>", R"({"text":5})", R"({"text":"half)"}) {
        server.script("cleanup", answering(jsonAnswer(body)));
        EXPECT_TRUE(failure<DecodingError>(client().cleanup(u"x"_s, std::nullopt, {}))) << body;
    }
    server.script("notes/summary", answering(jsonAnswer(R"({"title":"t"})")));
    EXPECT_TRUE(failure<DecodingError>(client().noteSummary({}, {})));
    server.script("auth/start", answering(jsonAnswer(R"({"request":"r","pollEvery":1})")));
    EXPECT_TRUE(failure<DecodingError>(client().startSignIn(u"a@b"_s)));
}

TEST_F(Answer, pollIsSignedInOnlyWithTokenAndAccount)
{
    const auto poll = [this](const QByteArray &body) {
        server.script("auth/poll", answering(jsonAnswer(body)));
        return awaited(client().poll(u"r"_s));
    };
    EXPECT_FALSE(poll(R"({"token":"t"})").signedIn);
    EXPECT_FALSE(poll(R"({"account":{"email":"a@b"}})").signedIn);
    const Poll done = poll(R"({"token":"t","account":{"email":"a@b","created":"2026-01-02T03:04:05Z"}})");
    ASSERT_TRUE(done.signedIn);
    EXPECT_EQ(done.signedIn->token, u"t"_s);
    EXPECT_EQ(done.signedIn->account.email, u"a@b"_s);
    server.script("auth/poll", answering(jsonAnswer(R"({"token":"a\nb","account":{"email":"a@b"}})")));
    EXPECT_TRUE(failure<DecodingError>(client().poll(u"r"_s))) << "a token that no header can hold";
}

TEST_F(Answer, redirectIsNotFollowed)
{
    VeskServer elsewhere;
    for (const int status : {301, 302, 303, 307, 308}) {
        for (const QUrl &target : {elsewhere.baseURL(), server.baseURL()}) {
            server.scriptEverything(
                answering({status, "", {{"Location", target.toEncoded() + "/elsewhere"}}}));
            const ServerError expected = ServerError::other(u"The Vesk server answered %1."_s.arg(status));
            EXPECT_EQ(failure<ServerError>(client().account()), expected);
            EXPECT_EQ(failure<ServerError>(client().cleanup(u"x"_s, std::nullopt, {})), expected);
        }
    }
    EXPECT_EQ(elsewhere.requests().size(), 0);
    EXPECT_EQ(server.requests("elsewhere").size(), 0);
}

/// The server keeps the connection open after the part that it sends, so that only a client which refuses
/// before the end ever comes back; the time limit of the operation would make it `offline`.
TEST_F(Answer, tooLongIsRefusedWhileItArrives)
{
    const ServerError tooLong = ServerError::other(u"The Vesk server's answer is too long."_s);
    const QByteArray large(ServerConnection::LongestAnswer + 1, ' ');

    const QByteArray beginning = R"({"email":"a@b"})";
    server.scriptOnce("account", answering(jsonAnswer(beginning + large.sliced(beginning.size() + 1))));
    EXPECT_EQ(awaited(client().account()).email, u"a@b"_s) << "the longest that is allowed";

    Script unannounced = answering(jsonAnswer(large + large.left(1000)));
    unannounced.manner = Script::Manner::stall;
    unannounced.isChunked = true;
    unannounced.stopAfter = large.size();
    server.script("account", unannounced);
    EXPECT_EQ(failure<ServerError>(client().account()), tooLong);

    Script announced = answering({200, "{", {{"Content-Length", QByteArray::number(large.size())}}});
    announced.manner = Script::Manner::stall;
    announced.stopAfter = 1;
    server.script("account", announced);
    EXPECT_EQ(failure<ServerError>(client().account()), tooLong);
}

TEST_F(Answer, compressedIsMeasuredUnpacked)
{
    const auto deflated = [](const QByteArray &text) {
        // qCompress puts the length in front of what HTTP calls deflate.
        return HttpAnswer{200, qCompress(text, 1).mid(4), {{"Content-Encoding", "deflate"}}};
    };
    server.scriptOnce("account", answering(deflated(R"({"email":"a@b"})")));
    EXPECT_EQ(awaited(client().account()).email, u"a@b"_s);

    // Text that shrinks as text does: random digits, repeated farther apart than the packer looks back.
    QByteArray digits(40'000, Qt::Uninitialized);
    QRandomGenerator random(1);
    std::ranges::generate(digits, [&random] { return "0123456789abcdef"[random.bounded(16)]; });
    const QByteArray text = digits.repeated(ServerConnection::LongestAnswer / digits.size() + 1);
    server.scriptOnce("account", answering(deflated(text)));
    EXPECT_EQ(failure<ServerError>(client().account()),
              ServerError::other(u"The Vesk server's answer is too long."_s));

    const ServerError unreadable = ServerError::other(u"The Vesk server's answer cannot be read."_s);
    const QByteArray bomb(ServerConnection::LongestAnswer * 2, 'a');
    server.scriptOnce("account", answering(deflated(bomb)));
    EXPECT_EQ(failure<ServerError>(client().account()), unreadable);
    server.scriptOnce("account", answering({200, "not deflated", {{"Content-Encoding", "deflate"}}}));
    EXPECT_EQ(failure<ServerError>(client().account()), unreadable);
}

} // namespace

} // namespace vesk
