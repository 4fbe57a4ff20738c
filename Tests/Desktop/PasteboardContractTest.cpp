#include "Support/PasteboardContract.h"

#include "Platform/Linux/Pasteboard/X11Pasteboard.h"
#include "Support/FakePasteboard.h"

namespace vesk {

namespace {

PasteboardUnderTest fake()
{
    auto board = std::make_unique<FakePasteboard>();
    FakePasteboard &same = *board;
    return {
        std::move(board),
        [&same](PasteboardName name, const QList<PasteboardItem> &items) { same.copyByAnother(name, items); },
        [&same](PasteboardName name) { return same.boards[name].items; }};
}

/// The other program is a second client of the display.
PasteboardUnderTest x11()
{
    const auto other = std::make_shared<X11Pasteboard>();
    return {std::make_unique<X11Pasteboard>(),
            [other](PasteboardName name, const QList<PasteboardItem> &items) {
                awaited(other->write(name, items));
            },
            [other](PasteboardName name) { return awaited(other->read(name)).items; }};
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Answers, PasteboardContract, testing::Values(&fake, &x11),
                         [](const auto &answer) { return answer.index == 0 ? "fake" : "x11"; });

TEST(PasteboardWithoutDisplay, saysSo)
{
    const QByteArray display = qgetenv("DISPLAY");
    qunsetenv("DISPLAY");
    {
        X11Pasteboard board;
        EXPECT_FALSE(board.availability().reason().isEmpty());
        EXPECT_THROW(awaited(board.read(PasteboardName::general)), PasteboardError);
        EXPECT_THROW(awaited(board.write(PasteboardName::general, {})), PasteboardError);
    }
    qputenv("DISPLAY", display);
}

} // namespace vesk
