// Each operation: its path, its body to the last key, its record.

#include "Server/ServerTest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QUuid>

namespace vesk {

namespace {

using namespace Qt::StringLiterals;

class Operation : public ServerTest {
protected:
    QJsonObject lastBody() const { return server.requests().back().json(); }

    QString recording(const QString &name, const QByteArray &content = "sound")
    {
        const QString path = folder.filePath(name);
        Files::replace(path, content);
        return path;
    }

    /// The text fields of the last upload by name; what breaks the format fails the test.
    QMap<QByteArray, QByteArray> lastFields() const
    {
        QMap<QByteArray, QByteArray> fields;
        const auto parts = server.requests().back().parts();
        EXPECT_TRUE(parts) << server.requests().back().body.constData();
        for (const MultipartPart &part : parts.value_or(std::vector<MultipartPart>())) {
            if (part.name != "audio") {
                EXPECT_EQ(part.contentType + part.fileName, "");
                fields.insert(part.name, part.content);
            }
        }
        return fields;
    }

    QTemporaryDir folder;
};

QJsonObject json(const char *text) { return QJsonDocument::fromJson(text).object(); }

FocusContext fullContext()
{
    return {u"Editor"_s, u"org.editor"_s,
            u"Letter"_s, u"AXTextArea"_s,
            u"Body"_s,   u"Dear \"A\","_s,
            u""_s,       u"\nбг"_s,
            true,        true};
}

TEST_F(Operation, contextHoldsEverythingThatIsKnown)
{
    const std::pair<std::optional<FocusContext>, QJsonObject> rows[] = {
        {std::nullopt, json(R"({"transcript":"t","vocabulary":["Vesk","бг"]})")},
        {fullContext(), json(R"({"transcript":"t","vocabulary":["Vesk","бг"],
            "context":{"app":{"name":"Editor","bundle_id":"org.editor"},"secure":true,"window_title":"Letter",
                       "field":{"role":"AXTextArea","label":"Body","text_before":"Dear \"A\",",
                                "selected":"","text_after":"\nбг"}}})")},
    };
    for (const auto &[context, expected] : rows) {
        EXPECT_EQ(awaited(client().cleanup(u"t"_s, context, {u"Vesk"_s, u"бг"_s})), u"T."_s);
        EXPECT_EQ(lastBody(), expected) << server.requests().back().body.constData();
    }
}

TEST_F(Operation, notesAreAskedAboutKeyByKey)
{
    const NoteMaterial note = {{u"my_notes"_s, u"n"_s}, {u"transcript"_s, u"Me: \"hi\"\n"_s}};

    const NoteSummary summary = awaited(client().noteSummary(note, {u"Vesk"_s}));
    EXPECT_EQ(summary.title, u"A meeting"_s);
    EXPECT_EQ(server.requests().back().path, "notes/summary");
    EXPECT_EQ(lastBody(),
              json(R"({"note":{"my_notes":"n","transcript":"Me: \"hi\"\n"},"vocabulary":["Vesk"]})"));

    const std::chrono::duration<double> elapsed(61.99);
    EXPECT_EQ(awaited(client().noteAnswer(u"What did I miss"_s, note, elapsed, {})), u"About this note."_s);
    EXPECT_EQ(server.requests().back().path, "notes/ask");
    EXPECT_EQ(lastBody(), json(R"({"question":"What did I miss","missed":false,"elapsed_seconds":61,
                                   "note":{"my_notes":"n","transcript":"Me: \"hi\"\n"},"vocabulary":[]})"));

    awaited(client().noteAnswer(u"What did I miss?"_s, {}, elapsed, {}));
    EXPECT_EQ(lastBody(), json(R"({"missed":true,"elapsed_seconds":61,"note":{},"vocabulary":[]})"));

    EXPECT_EQ(awaited(client().notesAnswer(u"Who?"_s, {note, {}}, {})), u"About all notes."_s);
    EXPECT_EQ(server.requests().back().path, "notes/ask-all");
    EXPECT_EQ(lastBody(), json(R"({"question":"Who?","vocabulary":[],
                                   "notes":[{"my_notes":"n","transcript":"Me: \"hi\"\n"},{}]})"));
}

TEST_F(Operation, accountOperationsSayWhoAsks)
{
    const Started started = awaited(client().startSignIn(u"a@b"_s));
    EXPECT_EQ(started.request, u"sign-in-1"_s);
    EXPECT_EQ(started.pollEvery, 1);
    EXPECT_EQ(server.requests().back().path, "auth/start");
    const QJsonObject device = {{u"id"_s, connection.deviceID()}, {u"name"_s, u"workbench"_s}};
    EXPECT_EQ(lastBody(), QJsonObject({{u"email"_s, u"a@b"_s}, {u"device"_s, device}}));

    awaited(client().poll(u"sign-in-1"_s));
    EXPECT_EQ(server.requests().back().path, "auth/poll");
    EXPECT_EQ(lastBody(), json(R"({"request":"sign-in-1"})"));

    EXPECT_EQ(awaited(client().account()).email, u"someone@example.com"_s);
    EXPECT_EQ(server.requests().back().method, "GET");
}

TEST_F(Operation, dictationUploadsTheRecordingWholeBetweenBoundariesOfItsOwn)
{
    // Line ends and dashes like those of the format, and every byte there is.
    QByteArray sound = "\r\n--\r\n--x--\r\n";
    for (int byte = 0; byte < 256; ++byte) {
        sound += static_cast<char>(byte);
    }
    sound = sound.repeated(4000) + "\r\n";
    QSet<QString> boundaries;
    for (int i = 0; i < 2; ++i) {
        const Dictated dictated = awaited(client().dictation(recording(u"a.m4a"_s, sound), std::nullopt, {}));
        EXPECT_EQ(dictated.text, u"This is what was said."_s);
        EXPECT_EQ(dictated.raw, u"um this is what was said"_s);
        EXPECT_EQ(dictated.words, 5);

        const ReceivedRequest &request = server.requests().back();
        EXPECT_EQ(request.method + ' ' + request.path, "POST dictation");
        const QString type = QString::fromLatin1(header(request.headers, "Content-Type").value_or(""));
        const QString boundary = type.section(u'=', 1);
        const QString identifier = QUuid(boundary).toString(QUuid::WithoutBraces).toUpper();
        EXPECT_EQ(type, QString(u"multipart/form-data; boundary=" + identifier));
        boundaries.insert(boundary);
        const QByteArray line = "--" + boundary.toLatin1();
        const QByteArray expected = line
            + "\r\nContent-Disposition: form-data; name=\"context\"\r\n\r\nnull\r\n" + line
            + "\r\nContent-Disposition: form-data; name=\"vocabulary\"\r\n\r\n[]\r\n" + line
            + "\r\nContent-Disposition: form-data; name=\"audio\"; filename=\"dictation.m4a\"\r\n"
              "Content-Type: audio/mp4\r\n\r\n"
            + sound + "\r\n" + line + "--\r\n";
        EXPECT_TRUE(request.body == expected) << request.body.left(500).constData();
    }
    EXPECT_EQ(boundaries.size(), 2);
}

TEST_F(Operation, recordingIsNamedAfterItsExtension)
{
    for (const auto &[name, fileName, type] : {
             std::tuple(u"a.wav"_s, "dictation.wav", "audio/wav"),
             std::tuple(u"A.WAV"_s, "dictation.wav", "audio/wav"),
             std::tuple(u"a.m4a"_s, "dictation.m4a", "audio/mp4"),
             std::tuple(u"a.wav.caf"_s, "dictation.m4a", "audio/mp4"),
             std::tuple(u"wav"_s, "dictation.m4a", "audio/mp4"),
         }) {
        awaited(client().dictation(recording(name), fullContext(), {u"a\"b"_s}));
        const auto parts = server.requests().back().parts();
        ASSERT_TRUE(parts);
        EXPECT_EQ(parts->back().fileName, fileName) << qPrintable(name);
        EXPECT_EQ(parts->back().contentType, type) << qPrintable(name);
    }
    EXPECT_EQ(lastFields().value("vocabulary"), R"(["a\"b"])");
    const QJsonObject context = json(lastFields().value("context"));
    EXPECT_EQ(context.value("field"_L1).toObject().value("text_after"_L1), u"\nбг"_s);
}

TEST_F(Operation, commandIsTypedOrSpoken)
{
    const QString selection = u"  кафе\r\n--x "_s;
    const Commanded typed =
        awaited(client().command(selection, TypedInstruction{u"shout"_s}, std::nullopt, {}));
    EXPECT_EQ(typed.text, u"AS IT WAS"_s);
    EXPECT_FALSE(typed.isUnchanged);
    EXPECT_EQ(typed.instruction, u"make it loud"_s);
    QMap<QByteArray, QByteArray> expected = {{"selection", selection.toUtf8()},
                                             {"context", "null"},
                                             {"vocabulary", "[]"},
                                             {"instruction", "shout"}};
    EXPECT_EQ(lastFields(), expected);

    awaited(client().command(selection, SpokenInstruction{recording(u"a.wav"_s)}, std::nullopt, {}));
    expected.remove("instruction");
    EXPECT_EQ(lastFields(), expected);
    EXPECT_EQ(server.requests().back().parts()->back().content, "sound");
}

TEST_F(Operation, recordingThatCannotBeReadIsNotSent)
{
    Task<Dictated> missing = client().dictation(folder.filePath(u"gone.wav"_s), std::nullopt, {});
    EXPECT_TRUE(failure<FileError>(std::move(missing)));
    EXPECT_TRUE(
        failure<FileError>(client().command(u"x"_s, SpokenInstruction{folder.path()}, std::nullopt, {})));
    EXPECT_EQ(server.requests().size(), 0);
}

} // namespace

} // namespace vesk
