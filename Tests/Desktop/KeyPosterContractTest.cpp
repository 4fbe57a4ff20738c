#include "Support/KeyPosterContract.h"

#include "Desktop/Screen.h"
#include "Dictation/Inserter.h"
#include "Dictation/InsertionError.h"
#include "Dictation/PasteboardLoan.h"
#include "Platform/Linux/Keys/InjectedKeys.h"
#include "Platform/Linux/Keys/XTestKeyPoster.h"
#include "Support/FakeKeyPoster.h"
#include "Support/FakePasteboard.h"

#include <QTimer>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

KeyPosterUnderTest fake(Clock &clock)
{
    auto poster = std::make_unique<FakeKeyPoster>(clock);
    FakeKeyPoster &same = *poster;
    return {std::move(poster), [&same](std::chrono::milliseconds time) { same.held = time; }};
}

KeyPosterUnderTest xtest(Clock &clock)
{
    static InjectedKeys injected;
    const auto screen = std::make_shared<test::Screen>();
    return {std::make_unique<XTestKeyPoster>(injected, clock), [screen](std::chrono::milliseconds time) {
                constexpr int RightControl = 105;
                screen->keyDown(RightControl);
                QTimer::singleShot(time, [screen] { screen->keyUp(RightControl); });
            }};
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Answers, KeyPosterContract, testing::Values(&fake, &xtest),
                         [](const auto &answer) { return answer.index == 0 ? "fake" : "xtest"; });

TEST(KeyPosterWithoutDisplay, saysSoToWhoWantsToPaste)
{
    const QByteArray display = qgetenv("DISPLAY");
    qunsetenv("DISPLAY");
    {
        SystemClock clock;
        InjectedKeys injected;
        XTestKeyPoster keys(injected, clock);
        FakePasteboard board;
        PasteboardLoan loan(board, clock);
        EXPECT_FALSE(keys.availability().reason().isEmpty());
        EXPECT_THROW(awaited(Inserter::paste(loan, keys, u"x"_s)), InsertionError);
        EXPECT_EQ(board.changeCount(PasteboardName::general), 0);
    }
    qputenv("DISPLAY", display);
}

} // namespace vesk
