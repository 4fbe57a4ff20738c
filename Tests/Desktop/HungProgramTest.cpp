#include "Desktop/AccessibilityFixture.h"
#include "Support/AccessibilityContract.h"

#include <QElapsedTimer>
#include <QTimer>

#include <csignal>

namespace vesk::test {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

const QString Text = AccessibilityContract::Text;

/// A stopped program until the end of the scope: what is stopped cannot be ended.
class Stopped {
public:
    explicit Stopped(Peer &peer)
        : m_peer(peer)
    {
        m_peer.process().signal(SIGSTOP);
    }
    ~Stopped() { m_peer.process().signal(SIGCONT); }
    Stopped(const Stopped &) = delete;
    Stopped &operator=(const Stopped &) = delete;

private:
    Peer &m_peer;
};

/// How long the thing takes at its best of a few times: a busy machine makes any one of them slow.
template <typename Work>
std::chrono::milliseconds best(Work work)
{
    auto shortest = std::chrono::milliseconds::max();
    for (int i = 0; i < 5; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        shortest = std::min(shortest, std::chrono::milliseconds(timer.elapsed()));
    }
    return shortest;
}

} // namespace

using HungProgramTest = AccessibilityTest;

TEST_F(HungProgramTest, theProgramInFrontCostsOneCallAndNeverTheMainThread)
{
    const auto editor = startMousepad(screen, Text);
    contextWithText();
    const Stopped stopped(*editor);
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
    timer.start(10ms);
    FocusContext context;
    EXPECT_LT(best([&] { context = captured(); }), 400ms);
    EXPECT_GE(ticks, 20) << "the event loop ran while the program was waited for";
    EXPECT_EQ(context.appName, u"Mousepad"_s);
    EXPECT_EQ(context.windowTitle, screen.title(editor->window()));
    EXPECT_FALSE(context.role);
    EXPECT_FALSE(context.textBefore);
    AccessibilityContract::expectsNothing(accessibility, editor->process().id());
}

TEST_F(HungProgramTest, aNamelessProgramInFrontCostsNoMore)
{
    const auto window = startQt(screen, u"area"_s, Text);
    contextWithText();
    const Stopped stopped(*window);
    LinuxAccessibility forgetful; // has not asked the program for its name yet
    ASSERT_TRUE(eventually([&] { return forgetful.isReady(); }));
    FocusContext context;
    EXPECT_LT(best([&] { context = awaited(FocusCapture::capture(forgetful, 10)).value_or(FocusContext()); }),
              400ms);
    EXPECT_EQ(context.appName, u"vesk_qt_field"_s);
    EXPECT_FALSE(context.role);
}

TEST_F(HungProgramTest, aNeighbourCostsNothing)
{
    const auto neighbour = startMousepad(screen, u"the neighbour's"_s);
    contextWithText();
    const auto window = startGtk(screen, 4, u"area"_s, Text, {2, 6});
    contextWhen([](const FocusContext &context) { return context.selectedText == u"Dear"_s; });
    const Stopped stopped(*neighbour);
    FocusContext context;
    EXPECT_LT(best([&] { context = captured(); }), 250ms) << "one question to the neighbour takes 300";
    EXPECT_EQ(context.selectedText, u"Dear"_s);
}

TEST_F(HungProgramTest, aProgramThatIsGoneIsAbsent)
{
    auto editor = startMousepad(screen, Text);
    contextWithText();
    const qint64 process = editor->process().id();
    editor.reset();
    AccessibilityContract::expectsNothing(accessibility, process);
}

} // namespace vesk::test
