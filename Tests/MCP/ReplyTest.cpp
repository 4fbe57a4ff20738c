#include "Foundation/Descriptor.h"
#include "MCP/LineReader.h"
#include "MCP/MCPServer.h"
#include "Notes/NoteFixtures.h"
#include "Support/TemporaryHome.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

class ReplyTest : public HomeTest {
protected:
    static std::optional<QByteArray> reply(const QByteArray &line)
    {
        return MCPServer(Note::folder()).reply(line);
    }

    static QJsonObject result(const QByteArray &method, const QByteArray &params)
    {
        const QByteArray line =
            R"({"jsonrpc":"2.0","id":1,"method":")" + method + R"(","params":)" + params + '}';
        return QJsonDocument::fromJson(reply(line).value_or("{}")).object().value("result"_L1).toObject();
    }

    /// The text of a tool's answer, with "error: " before it when it is one.
    static QString call(const QByteArray &params)
    {
        const QJsonObject answer = result("tools/call", params);
        const QString text =
            answer.value("content"_L1).toArray().at(0).toObject().value("text"_L1).toString();
        return (answer.value("isError"_L1).toBool() ? u"error: "_s : QString()) + text;
    }
};

QByteArray error(const QByteArray &id, int code, const QByteArray &message)
{
    return R"({"jsonrpc":"2.0","id":)" + id + R"(,"error":{"code":)" + QByteArray::number(code)
        + R"(,"message":")" + message + "\"}}";
}

QByteArray pong(const QByteArray &id) { return R"({"jsonrpc":"2.0","id":)" + id + R"(,"result":{}})"; }

} // namespace

TEST_F(ReplyTest, everyMessageHasItsAnswerOrNone)
{
    const QByteArray parse = error("null", -32700, "Parse error");
    const QByteArray invalid = error("null", -32600, "Invalid Request");
    const std::pair<QByteArray, std::optional<QByteArray>> rows[] = {
        {R"({"id":1,"method":"ping"})", pong("1")},
        {R"( {"id":1,"method":"ping","params":[1]} )"
         "\r",
         pong("1")},
        {R"({"id":1,"id":2,"method":"ping"})", pong("2")},
        {R"({"id":1,"m\u0065thod":"ping"})", pong("1")},
        // Ids come back as they came.
        {R"({"id":"1","method":"ping"})", pong("\"1\"")},
        {R"({"id":"\u0041\/","method":"ping"})", pong(R"("\u0041\/")")},
        {R"({"id":null,"method":"ping"})", pong("null")},
        {R"({"id":-0.50,"method":"ping"})", pong("-0.50")},
        {R"({"id":123456789012345678901234567890,"method":"ping"})", pong("123456789012345678901234567890")},
        // What wants no answer.
        {R"({"method":"ping"})", std::nullopt},
        {R"({"method":"no/such"})", std::nullopt},
        {R"({"id":1,"result":{}})", std::nullopt},
        {R"({"id":1,"error":null})", std::nullopt},
        {R"([{"method":"ping"},{"id":1,"result":{}}])", std::nullopt},
        // What is wrong.
        {R"({"id":"x","method":"server/discover"})",
         error("\"x\"", -32601, "Method not found: server/discover")},
        {R"({"id":7,"method":5})", error("7", -32600, "Invalid Request")},
        {R"({"jsonrpc":"2.0"})", invalid},
        {R"([])", invalid},
        {R"("ping")", invalid},
        {R"(12)", invalid},
        {R"([1,{"id":1,"method":"ping"},[]])", '[' + invalid + ',' + pong("1") + ',' + invalid + ']'},
        {R"({"id":1,"method":"tools/call"})", error("1", -32602, "Unknown tool: ")},
        {R"({"id":1,"method":"tools/call","params":{"name":"rm"}})", error("1", -32602, "Unknown tool: rm")},
        {R"({"id":1,"method":"ping")", parse},
        {R"({"id":1,"method":"ping"} x)", parse},
        {"{\"id\":\"\xff\",\"method\":\"ping\"}", parse},
        {R"({"id":"\ud800","method":"ping"})", parse},
        {QByteArray("\0", 1), parse},
        {QByteArray(100'000, '['), parse},
    };
    for (const auto &[line, answer] : rows) {
        EXPECT_EQ(reply(line), answer) << line.left(200).constData();
    }
    const QByteArray megabytes(3'000'000, 'x');
    EXPECT_EQ(reply(R"({"method":"ping","x":")" + megabytes + R"(","id":1})"), pong("1"));
}

TEST_F(ReplyTest, initializingSettlesOnAVersion)
{
    const std::pair<QByteArray, QString> rows[] = {
        {R"({"protocolVersion":"2024-11-05"})", u"2024-11-05"_s},
        {R"({"protocolVersion":"2025-06-18"})", u"2025-06-18"_s},
        {R"({"protocolVersion":"2024-10-07"})", u"2025-11-25"_s},
        {R"({"protocolVersion":5})", u"2025-11-25"_s},
        {R"([])", u"2025-11-25"_s},
    };
    for (const auto &[params, version] : rows) {
        EXPECT_EQ(result("initialize", params).value("protocolVersion"_L1).toString(), version);
    }
}

TEST_F(ReplyTest, strangeArgumentsAreTheirDefaults)
{
    for (int i = 0; i < 25; ++i) {
        putNote(noteOf(i, u"note %1"_s.arg(i), {u"word"_s}));
    }
    const std::pair<QByteArray, int> limits[] = {
        {R"({})", 20},
        {R"({"limit":3})", 3},
        {R"({"limit":0})", 1},
        {R"({"limit":-7})", 1},
        {R"([3])", 20},
        {R"({"limit":"3"})", 20},
        {R"({"limit":2.5})", 20},
        {R"({"limit":3.0})", 3},
        {R"(null)", 20},
        {R"({"limit":1e30})", 20},
        {R"({"limit":9223372036854775807})", 25},
        {R"({"limit":true})", 20},
    };
    for (const auto &[arguments, shown] : limits) {
        const QString text = call(R"({"name":"list_notes","arguments":)" + arguments + '}');
        const QJsonObject list = QJsonDocument::fromJson(text.toUtf8()).object();
        EXPECT_EQ(list.value("notes"_L1).toArray().size(), shown) << arguments.constData();
        EXPECT_EQ(list.value("total"_L1).toInt(), 25);
    }
    for (const char *arguments : {R"({})", R"({"query":" \n\t"})", R"({"query":5})", R"(["query"])"}) {
        EXPECT_EQ(call(QByteArray(R"({"name":"search_notes","arguments":)") + arguments + '}'),
                  u"error: search_notes needs a query."_s);
    }
}

TEST_F(ReplyTest, whatIsNoIdOfANoteIsSaidBack)
{
    putFile(u"0E6F5B4C-1111-4222-8333-444455556666.json"_s, "{");
    putFile(u"../secret.json"_s, *encodeNote(noteOf(1, u"secret"_s)));
    for (const QString &id : {u""_s, u"../secret"_s, u"0E6F5B4C-1111-4222-8333-444455556666"_s,
                              u"/etc/passwd"_s, u"{0E6F5B4C-1111-4222-8333-444455556666}"_s, u"note 5"_s}) {
        EXPECT_EQ(call(R"({"name":"get_note","arguments":{"id":)" + Json::quoted(id) + "}}"),
                  u"error: No note with id \"" + id + u"\". Find the id with list_notes or search_notes.");
    }
}

TEST_F(ReplyTest, streamsThatDoNotWaitAreWaitedFor)
{
    int ends[2] = {};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    const Descriptor server(ends[0]);
    const Descriptor client(ends[1]);
    ASSERT_EQ(::fcntl(server.number(), F_SETFL, O_NONBLOCK), 0);
    int status = -1;
    std::thread serving([&] { status = MCPServer(Note::folder()).run(server.number(), server.number()); });
    const QByteArray ping = "{\"id\":1,\"method\":\"ping\"}\n";
    LineReader answers(client.number());
    EXPECT_EQ(writeAll(client.number(), ping), 0);
    EXPECT_TRUE(answers.next()); // what comes next finds the server reading
    // Far more answers than the socket holds before the first is fetched.
    EXPECT_EQ(writeAll(client.number(), ping.repeated(3000)), 0);
    ::shutdown(client.number(), SHUT_WR);
    int answered = 0;
    while (answered < 3000 && answers.next()) {
        ++answered;
    }
    serving.join();
    EXPECT_EQ(answered, 3000);
    EXPECT_EQ(status, EXIT_SUCCESS);
}

TEST(LineReaderTest, linesAreCutAtLineFeedsHoweverTheyCome)
{
    int ends[2] = {};
    ASSERT_EQ(::pipe(ends), 0);
    const Descriptor input(ends[0]);
    std::thread writer([end = ends[1]] {
        const QByteArray longLine(LineReader::LongestLine + 200'000, 'x');
        for (const QByteArray &piece :
             {QByteArray("on"), QByteArray("e\r\n\ntwo\n"), longLine, QByteArray("\nlast")}) {
            writeAll(end, piece);
        }
        ::close(end);
    });
    LineReader lines(input.number());
    for (const char *expected : {"one\r", "", "two"}) {
        EXPECT_EQ(lines.next()->bytes, expected);
    }
    EXPECT_TRUE(lines.next()->isTooLong);
    const auto last = lines.next();
    EXPECT_EQ(last->bytes, "last");
    EXPECT_FALSE(last->isTooLong);
    EXPECT_FALSE(lines.next());
    writer.join();
}

} // namespace vesk
