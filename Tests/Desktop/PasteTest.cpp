#include "Desktop/PasteFixture.h"
#include "Dictation/InsertionError.h"
#include "Platform/Clock.h"
#include "Platform/Linux/Keys/XInputKeyEvents.h"
#include "Support/Await.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>

#include <csignal>

namespace vesk::test {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int RightAlt = 108;
constexpr int CapsLock = 66;
constexpr int KeyA = 38;

const QString Sample = u"Grüße: 世界, 😀 ✓ “quoted”"_s;

void expectOnClipboard(const ClipboardOwner::Contents &contents)
{
    for (auto entry = contents.cbegin(); entry != contents.cend(); ++entry) {
        const QByteArray found = onClipboard(entry.key());
        EXPECT_TRUE(found == entry.value())
            << qPrintable(entry.key()) << ": " << found.size() << " bytes, not " << entry.value().size();
    }
}

class PasteOnDesktop : public PasteFixture {};

/// A case for each program.
class PasteInto : public PasteFixture, public testing::WithParamInterface<const char *> {};

/// The layouts that people type with; the last is two, switched by Caps Lock to the second.
struct Layouts {
    explicit Layouts(Screen &screen)
        : m_screen(screen)
    {
    }
    ~Layouts() { choose(u"us"_s); }

    void choose(const QString &layout)
    {
        if (m_isSecond) {
            m_screen.tap(CapsLock);
        }
        run(u"setxkbmap"_s, {u"-layout"_s, layout, u"-option"_s, u""_s, u"-option"_s, u"grp:caps_toggle"_s});
        m_isSecond = layout.contains(u',');
        if (m_isSecond) {
            m_screen.tap(CapsLock);
        }
    }

private:
    Screen &m_screen;
    bool m_isSecond = false;
};

} // namespace

TEST_P(PasteInto, theTextArrivesInEveryLayoutAndTheClipboardComesBackWhole)
{
    const Target target = startTarget(screen, reader, QString::fromLatin1(GetParam()));
    const ClipboardOwner owner(ClipboardOwner::everything());
    Layouts layouts(screen);
    const std::pair<QString, QString> rows[] = {
        {u"us"_s, u"a"_s},    {u"de"_s, u"a"_s},         {u"fr"_s, u"q"_s}, {u"ru"_s, u"ф"_s},
        {u"us,ru"_s, u"ф"_s}, {u"us(dvorak)"_s, u"a"_s}, {u"gr"_s, u"α"_s}};
    for (const auto &[layout, letter] : rows) {
        layouts.choose(layout);
        screen.tap(KeyA); // shows that the layout is in use
        const QString text = QString(u" "_s + layout + u": "_s + Sample);
        paste(text);
        const QString expected = QString(letter + text);
        EXPECT_TRUE(target.textWith(expected).endsWith(expected)) << qPrintable(layout);
    }
    EXPECT_TRUE(waitUntilGivenBack());
    expectOnClipboard(ClipboardOwner::everything());
}

INSTANTIATE_TEST_SUITE_P(Programs, PasteInto, testing::Values("mousepad", "gtk4", "qt6", "chromium", "xterm"),
                         [](const auto &program) { return std::string(program.param); });

TEST_F(PasteOnDesktop, aTerminalsSelectionComesBackAsWell)
{
    const ClipboardOwner owner(ClipboardOwner::everything());
    const ClipboardOwner selecting({{u"UTF8_STRING"_s, "selected"}}, u"PRIMARY"_s);
    const Target terminal = startTarget(screen, reader, u"xterm"_s);
    paste(u"ls"_s);
    EXPECT_EQ(terminal.textWith(u"ls"_s), u"ls"_s);
    EXPECT_TRUE(waitUntilGivenBack());
    EXPECT_TRUE(eventually([] { return onClipboard(u"UTF8_STRING"_s, u"primary"_s) == "selected"; }));
    expectOnClipboard(ClipboardOwner::everything());
}

TEST_F(PasteOnDesktop, historiesAreToldToLeaveTheTextOut)
{
    paste(u"passing"_s);
    EXPECT_EQ(onClipboard(u"x-kde-passwordManagerHint"_s), "secret");
    const QStringList types = QString::fromUtf8(onClipboard(u"TARGETS"_s)).split(u'\n');
    EXPECT_TRUE(types.contains(u"org.nspasteboard.TransientType"_s));
    EXPECT_EQ(onClipboard(u"org.nspasteboard.TransientType"_s), "");
    EXPECT_EQ(onClipboard(u"UTF8_STRING"_s), "passing");
    EXPECT_EQ(onClipboard(u"STRING"_s), "passing");
}

TEST_F(PasteOnDesktop, anOwnerThatHangsCostsHalfASecondAndIsNotReplacedByNothing)
{
    QDir().mkpath(QString(testHome() + u"/Library/Logs"_s));
    const Target target = startTarget(screen, reader, u"mousepad"_s);
    ClipboardOwner owner(ClipboardOwner::everything());
    owner.process().signal(SIGSTOP);
    const auto start = clock.monotonic();
    paste(u"SECRETWORD"_s);
    EXPECT_LT(clock.monotonic() - start, 3s);
    EXPECT_EQ(target.textWith(u"SECRETWORD"_s), u"SECRETWORD"_s);
    EXPECT_TRUE(waitUntilGivenBack());
    EXPECT_EQ(onClipboard(u"UTF8_STRING"_s), "") << "what was pasted does not stay";
    EXPECT_TRUE(logText().contains("did not answer: it is cleared"));
    EXPECT_FALSE(logText().contains("SECRETWORD"));

    // Its late answers do not mix with those of the next owner.
    const ClipboardOwner next({{u"UTF8_STRING"_s, "next"}});
    owner.process().signal(SIGCONT);
    EXPECT_EQ(owner.process().readLine(), "lost");
    paste(u" again"_s);
    EXPECT_EQ(target.textWith(u"again"_s), u"SECRETWORD again"_s);
    EXPECT_TRUE(waitUntilGivenBack());
    EXPECT_EQ(onClipboard(u"UTF8_STRING"_s), "next");
}

TEST_F(PasteOnDesktop, whatThePersonCopiesMeanwhileIsNotTouched)
{
    const ClipboardOwner owner(ClipboardOwner::everything());
    paste(u"ours"_s);
    copyInAnotherProgram("theirs");
    ASSERT_TRUE(waitUntilGivenBack()); // the copy itself
    awaited(clock.after(PasteboardLoan::Term + 200ms));
    EXPECT_EQ(onClipboard(u"UTF8_STRING"_s), "theirs");
}

TEST_F(PasteOnDesktop, aHeldModifierIsWaitedForAndAfterTwoSecondsNothingIsPasted)
{
    const Target target = startTarget(screen, reader, u"mousepad"_s);
    const ClipboardOwner owner({{u"UTF8_STRING"_s, "mine"}});
    for (const int key : {RightAlt, 50 /* Shift */, 37 /* Control */}) {
        screen.keyDown(key);
        screen.keyDown(255); // a tap of a key that means nothing keeps a lone Alt from opening the menu bar
        screen.keyUp(255);
        auto pasting = Inserter::paste(loan, keys, QString::number(key));
        awaited(clock.after(100ms));
        EXPECT_FALSE(pasting.isReady());
        screen.keyUp(key);
        awaited(std::move(pasting));
        EXPECT_TRUE(target.textWith(QString::number(key)).endsWith(QString::number(key)));
    }
    paste(u" last"_s);
    EXPECT_TRUE(waitUntilGivenBack());

    const qint64 count = pasteboard.changeCount(PasteboardName::general);
    screen.keyDown(37);
    EXPECT_THROW(paste(u"never"_s), InsertionError);
    screen.keyUp(37);
    EXPECT_EQ(pasteboard.changeCount(PasteboardName::general), count);
    EXPECT_EQ(onClipboard(u"UTF8_STRING"_s), "mine");
    paste(u" after"_s);
    EXPECT_EQ(target.textWith(u"after"_s), u"1085037 last after"_s);
}

TEST_F(PasteOnDesktop, aLockedModifierIsNotAHeldOne)
{
    const Target target = startTarget(screen, reader, u"mousepad"_s);
    screen.tap(CapsLock);
    screen.tap(KeyA);
    paste(u" pasted"_s);
    EXPECT_EQ(target.textWith(u"pasted"_s), u"A pasted"_s);
    screen.tap(CapsLock);
}

TEST_F(PasteOnDesktop, theClipboardOutlivesTheProgram)
{
    const ClipboardOwner owner(ClipboardOwner::everything());
    {
        X11Pasteboard last(QStringLiteral(VESK_TEST_KEEPER));
        PasteboardLoan lastLoan(last, clock);
        awaited(Inserter::paste(lastLoan, keys, u"passing"_s));
        lastLoan.finish(5s);
    }
    expectOnClipboard(ClipboardOwner::everything());
    EXPECT_EQ(countRunning("vesk-clipboard-"), 1);
    copyInAnotherProgram("new");
    EXPECT_TRUE(eventually([] { return countRunning("vesk-clipboard-") == 0; }));
    EXPECT_EQ(onClipboard(u"UTF8_STRING"_s), "new");

    // Who owns nothing leaves nobody behind, and a keeper that is missing is no success.
    EXPECT_TRUE(X11Pasteboard(u"/nonexistent"_s).persist(1s));
    X11Pasteboard alone(u"/nonexistent"_s);
    awaited(alone.write(PasteboardName::general,
                        {PasteboardItem{{PasteboardData{u"text/plain"_s, "lost", {}}}}}));
    EXPECT_FALSE(alone.persist(1s));
}

TEST_F(PasteOnDesktop, theKeyMonitorTellsOurKeysFromThePersons)
{
    constexpr int RightCommand = 54;
    XInputKeyEvents events(injected);
    QList<int> seen;
    const auto monitor = events.addGlobalMonitor([&seen](const KeyEvent &event) {
        seen.append(event.keyCode);
        return KeyUse::ignored;
    });
    paste(u"x"_s);
    screen.tap(105); // right Control, by the person: what came before it has been seen by then
    EXPECT_TRUE(eventually([&seen] { return seen.size() >= 2; }));
    EXPECT_EQ(seen, (QList<int>{RightCommand, RightCommand}));

    const auto then = std::chrono::steady_clock::now();
    injected.expect(37, true, then);
    EXPECT_FALSE(injected.take(37, true, then + 1001ms)) << "what did not come back in time is lost";
}

} // namespace vesk::test
