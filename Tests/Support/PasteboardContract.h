#pragma once

#include "Platform/Pasteboard.h"
#include "Support/Await.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace vesk {

/// One way to have a pasteboard, and another program that uses the same one.
struct PasteboardUnderTest {
    std::unique_ptr<Pasteboard> ours;
    std::function<void(PasteboardName, QList<PasteboardItem>)> copyInAnotherProgram;
    std::function<QList<PasteboardItem>(PasteboardName)> seenByAnotherProgram;
};

using PasteboardMaker = std::function<PasteboardUnderTest()>;

/// What every answer to Pasteboard has to keep.
class PasteboardContract : public testing::TestWithParam<PasteboardMaker> {
protected:
    static QList<PasteboardItem> item(const QByteArray &bytes)
    {
        PasteboardItem made;
        made.representations.append({QStringLiteral("application/x-vesk-test"), bytes, {}});
        made.representations.append({QStringLiteral("text/html"), "<i>" + bytes + "</i>", {}});
        return {made};
    }

    /// The bytes by type; encodings are the system's own.
    static QMap<QString, QByteArray> bytesOf(const QList<PasteboardItem> &items)
    {
        QMap<QString, QByteArray> bytes;
        for (const PasteboardItem &one : items) {
            for (const PasteboardData &data : one.representations) {
                bytes.insert(data.type, data.bytes);
            }
        }
        return bytes;
    }

    PasteboardUnderTest board = GetParam()();
};

TEST_P(PasteboardContract, whatIsWrittenIsSeenByOthersAndWhatOthersCopyIsRead)
{
    ASSERT_TRUE(board.ours->availability().isAvailable());
    const QByteArray large(1'000'003, 'x'); // more than one answer of a display server
    for (const PasteboardName name : {PasteboardName::general, PasteboardName::selection}) {
        for (const QByteArray &bytes : {QByteArray("one\0two", 7), large, QByteArray()}) {
            awaited(board.ours->write(name, item(bytes)));
            EXPECT_TRUE(bytesOf(board.seenByAnotherProgram(name)) == bytesOf(item(bytes)));

            board.copyInAnotherProgram(name, item("theirs " + bytes));
            const PasteboardSnapshot snapshot = awaited(board.ours->read(name));
            EXPECT_TRUE(snapshot.isComplete);
            EXPECT_TRUE(bytesOf(snapshot.items) == bytesOf(item("theirs " + bytes)));

            // A snapshot goes back as it came, the system's own marks included.
            awaited(board.ours->write(name, snapshot.items));
            EXPECT_TRUE(awaited(board.ours->read(name)).items == snapshot.items);
        }
    }
}

TEST_P(PasteboardContract, theCountMovesWithEveryWriteOfAnyone)
{
    const auto name = PasteboardName::general;
    const qint64 first = awaited(board.ours->write(name, item("1")));
    EXPECT_EQ(board.ours->changeCount(name), first);
    const qint64 second = awaited(board.ours->write(name, item("2")));
    EXPECT_GT(second, first);
    board.copyInAnotherProgram(name, item("3"));
    EXPECT_TRUE(eventually([&] { return board.ours->changeCount(name) > second; }));
    const qint64 cleared = awaited(board.ours->clear(name));
    EXPECT_GT(cleared, second + 1);
    EXPECT_TRUE(board.seenByAnotherProgram(name).isEmpty());
    EXPECT_TRUE(awaited(board.ours->read(name)).items.isEmpty());
    EXPECT_TRUE(awaited(board.ours->read(name)).isComplete);
    const qint64 again = awaited(board.ours->clear(name)); // nobody owned it before
    EXPECT_EQ(again, board.ours->changeCount(name));
}

TEST_P(PasteboardContract, boardsDoNotTouchEachOther)
{
    awaited(board.ours->write(PasteboardName::general, item("general")));
    const qint64 count = board.ours->changeCount(PasteboardName::general);
    board.copyInAnotherProgram(PasteboardName::selection, item("selected"));
    EXPECT_EQ(bytesOf(awaited(board.ours->read(PasteboardName::selection)).items), bytesOf(item("selected")));
    EXPECT_EQ(bytesOf(awaited(board.ours->read(PasteboardName::general)).items), bytesOf(item("general")));
    EXPECT_EQ(board.ours->changeCount(PasteboardName::general), count);
}

} // namespace vesk
