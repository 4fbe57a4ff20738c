// Damages note files and lines of the protocol at random, and looks whether the readers notice together:
//
//     vesk_notes_fuzz --rounds N [SEED]     as many rounds
//     vesk_notes_fuzz --seconds N [SEED]    as long
//
// A round that finds something prints its seed and input and ends the program with status 1; the sanitizers
// end it themselves. Writes its notes below a folder of its own in TMPDIR.

#include "Foundation/JsonScanner.h"
#include "MCP/MCPServer.h"
#include "Notes/FastNoteReading.h"
#include "Notes/NoteDecoder.h"
#include "Notes/NoteFixtures.h"
#include "Notes/StrictNoteReading.h"

#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace vesk {

namespace {

using namespace Qt::StringLiterals;

class Fuzz {
public:
    Fuzz(unsigned seed, QString folder)
        : m_strange(seed)
        , m_server(std::move(folder))
    {
    }

    /// What is wrong, or nothing.
    QByteArray round()
    {
        const QByteArray note = damaged(*encodeNote(m_strange.note()));
        if (readsDifferently(note)) {
            return "the readers disagree on: " + note;
        }
        const QByteArray line = damaged(message());
        const std::optional<QByteArray> answer = m_server.reply(line);
        return answer && !isJson(*answer) ? QByteArray("the answer is not JSON, to: " + line) : QByteArray();
    }

private:
    /// Not Qt's judgement: it knows no number beyond a double, and an id may be any.
    static bool isJson(const QByteArray &text)
    {
        try {
            JsonView::parse(text);
            return true;
        } catch (const DecodingError &) { // that is the answer
            return false;
        }
    }

    int below(qsizetype limit) { return m_strange.below(static_cast<int>(std::max<qsizetype>(limit, 1))); }

    QByteArray damaged(QByteArray bytes)
    {
        static const QByteArrayList Spices = {"\"", "\\",    "\\u",  "\\ud83d",  "{",    "}",
                                              "[",  "]",     ",",    ":",        "null", "1e9",
                                              "-",  "\xff",  "\xc3", "\xf0\x9f", "\n",   QByteArray(1, '\0'),
                                              "0",  "\"id\""};
        for (int left = below(4); left > 0 && !bytes.isEmpty(); --left) {
            const qsizetype at = below(bytes.size());
            switch (below(5)) {
            case 0: bytes[at] = static_cast<char>(below(256)); break;
            case 1: bytes.remove(at, 1 + below(20)); break;
            case 2: bytes.insert(at, Spices[below(Spices.size())]); break;
            case 3: bytes.insert(at, bytes.mid(below(bytes.size()), below(60))); break;
            default: bytes.truncate(at); break;
            }
        }
        return bytes;
    }

    QByteArray message()
    {
        static const QByteArrayList Methods = {"initialize", "ping", "tools/list", "tools/call"};
        static const QByteArrayList Tools = {"list_notes", "search_notes", "get_note"};
        return R"({"jsonrpc":"2.0","id":)" + QByteArray::number(below(100)) + R"(,"method":")"
            + Methods[below(Methods.size())] + R"(","params":{"name":")" + Tools[below(Tools.size())]
            + R"(","arguments":{"limit":2,"part":1,"id":"x","query":)" + Json::quoted(m_strange.text(4))
            + "}}}";
    }

    bool readsDifferently(const QByteArray &json)
    {
        const QByteArray padded = json + QByteArray(FastNoteReading::padding(), '\0');
        NoteDecoder fast;
        const bool isSurelyNote = m_fast.read(QByteArrayView(padded).first(json.size()), fast);
        JsonScanner inMemory{QByteArrayView(json)};
        NoteDecoder strict;
        const bool isNote = readNoteStrictly(inMemory, strict);
        qsizetype at = 0;
        JsonScanner window(
            [&](char *into, qsizetype capacity) {
                const qsizetype length = std::min({capacity, json.size() - at, qsizetype(1 + below(40))});
                std::copy_n(json.begin() + at, length, into);
                at += length;
                return length;
            },
            128);
        NoteDecoder windowed;
        if (readNoteStrictly(window, windowed) != isNote || (isSurelyNote && !isNote)) {
            return true;
        }
        const Note note = strict.takeNote();
        return isNote && (!(windowed.takeNote() == note) || (isSurelyNote && !(fast.takeNote() == note)));
    }

    StrangeTexts m_strange;
    MCPServer m_server;
    FastNoteReading m_fast;
};

int run(const QByteArray &unit, qint64 amount, unsigned firstSeed)
{
    const QTemporaryDir folder;
    StrangeTexts strange(firstSeed);
    for (int i = 0; i < 20; ++i) {
        Files::replace(folder.filePath(QString::number(i) + u".json"), *encodeNote(strange.note()));
    }
    const auto start = std::chrono::steady_clock::now();
    qint64 rounds = 0;
    const auto isDone = [&] {
        const auto passed = std::chrono::steady_clock::now() - start;
        return unit == "--rounds" ? rounds >= amount : passed >= std::chrono::seconds(amount);
    };
    for (unsigned seed = firstSeed; !isDone(); ++seed, ++rounds) {
        if (const QByteArray fault = Fuzz(seed, folder.path()).round(); !fault.isEmpty()) {
            std::printf("seed %u: %s\n0 passed, 1 failed\n", seed, fault.constData());
            return EXIT_FAILURE;
        }
    }
    std::printf("%lld rounds\n1 passed, 0 failed\n", static_cast<long long>(rounds));
    return EXIT_SUCCESS;
}

} // namespace

} // namespace vesk

int main(int argumentCount, char **arguments)
{
    const QByteArray unit = argumentCount > 2 ? arguments[1] : "";
    if (unit != "--rounds" && unit != "--seconds") {
        std::fprintf(stderr, "usage: vesk_notes_fuzz --rounds|--seconds N [SEED]\n");
        return EXIT_FAILURE;
    }
    const unsigned seed = argumentCount > 3 ? QByteArray(arguments[3]).toUInt() : 1;
    return vesk::run(unit, QByteArray(arguments[2]).toLongLong(), seed);
}
