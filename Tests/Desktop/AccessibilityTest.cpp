#include "Desktop/AccessibilityFixture.h"
#include "Platform/Linux/Accessibility/SelectionRepair.h"
#include "Support/AccessibilityContract.h"

#include <csignal>

namespace vesk::test {

namespace {

using namespace Qt::StringLiterals;

constexpr int Home = 110;
constexpr int End = 115;
constexpr int Right = 114;
constexpr int Shift = 50;

const QString Text = AccessibilityContract::Text;
constexpr Selected Dear{2, 6};

/// What every program owes, however it is made: the words around a selection behind an emoji, and around the
/// cursor at the end, where the key puts it.
void expectTheWords(const FocusContext &context, const char *role)
{
    EXPECT_EQ(context.role, QLatin1String(role));
    EXPECT_EQ(context.textBefore, u"\U0001F600 "_s);
    EXPECT_EQ(context.selectedText, u"Dear"_s);
    EXPECT_EQ(context.textAfter, u" Sir"_s);
    EXPECT_FALSE(context.isSecure);
    EXPECT_FALSE(context.isSelectionCut);
}

} // namespace

class FieldTest : public AccessibilityTest {
protected:
    void expectTheSelection(const char *role)
    {
        expectTheWords(
            contextWhen([](const FocusContext &context) { return context.selectedText == u"Dear"_s; }), role);
    }

    void expectTheCursorAtTheEnd()
    {
        screen.tap(End);
        const FocusContext context = contextWhen(
            [](const FocusContext &seen) { return !seen.selectedText && seen.textAfter == u""_s; });
        EXPECT_EQ(context.textBefore, Text);
    }
};

TEST_F(FieldTest, mousepadShowsTheWordsAroundItsCursor)
{
    const auto editor = startMousepad(screen, Text);
    contextWithText();
    screen.tap(Home);
    screen.tap(Right);
    screen.tap(Right);
    screen.keyDown(Shift);
    for (int i = Dear.start; i < Dear.end; ++i) {
        screen.tap(Right);
    }
    screen.keyUp(Shift);
    expectTheSelection("AXTextArea");
    AccessibilityContract::expectsAField(accessibility);
    const FocusContext context = contextWithText();
    EXPECT_EQ(context.appName, u"Mousepad"_s);
    EXPECT_EQ(context.bundleID, u"org.xfce.mousepad"_s);
    EXPECT_EQ(context.windowTitle, screen.title(editor->window()));
    expectTheCursorAtTheEnd();
}

TEST_F(FieldTest, theWordsAroundTheCursorAreShownInEveryKindOfField)
{
    using Start = std::function<std::unique_ptr<Peer>(const QString &)>;
    const Start gtk = [this](const QString &kind) { return startGtk(screen, 4, kind, Text, Dear); };
    const Start qt = [this](const QString &kind) { return startQt(screen, kind, Text, Dear); };
    const Start chromium = [this](const QString &kind) { return startChromium(screen, kind, Text, Dear); };
    const Start firefox = [this](const QString &kind) { return startFirefox(screen, kind, Text, Dear); };
    std::vector<std::tuple<Start, QString, const char *, std::optional<QString>, QString>> rows = {
        {gtk, u"area"_s, "AXTextArea", std::nullopt, u"vesk-gtk-field"_s},
        {gtk, u"entry"_s, "AXTextField", u"Subject"_s, u"vesk-gtk-field"_s},
        {qt, u"area"_s, "AXTextArea", u"Notes"_s, u"vesk_qt_field"_s},
        {qt, u"plain"_s, "AXTextArea", u"Notes"_s, u"vesk_qt_field"_s},
        {qt, u"entry"_s, "AXTextField", u"Subject"_s, u"vesk_qt_field"_s},
        {chromium, u"area"_s, "AXTextArea", u"Message"_s, u"chromium"_s},
        {chromium, u"entry"_s, "AXTextField", u"Subject"_s, u"chromium"_s}};
    if (isFirefoxTried()) {
        rows.emplace_back(firefox, u"area"_s, "AXTextArea", u"Message"_s, u"firefox"_s);
        rows.emplace_back(firefox, u"entry"_s, "AXTextField", u"Subject"_s, u"firefox"_s);
    }
    for (const auto &[start, kind, role, label, program] : rows) {
        SCOPED_TRACE(QString(program + u' ' + kind).toStdString());
        const auto window = start(kind);
        expectTheSelection(role);
        AccessibilityContract::expectsAField(accessibility);
        const FocusContext context = contextWithText();
        // Without a desktop file, the program's own word for itself.
        EXPECT_TRUE(context.bundleID.startsWith(program) || context.appName == program) << describe(context);
        EXPECT_EQ(context.label, label);
        expectTheCursorAtTheEnd();
    }
}

TEST_F(FieldTest, aProgramWithoutFieldsGivesItsNameAndTitle)
{
    const Peer terminal(screen, u"xterm"_s, {u"-T"_s, u"A terminal"_s, u"-e"_s, u"cat"_s}, u"A terminal"_s);
    FocusContext expected;
    expected.appName = u"XTerm"_s;
    expected.bundleID = u"debian-xterm"_s;
    expected.windowTitle = u"A terminal"_s;
    EXPECT_EQ(contextWhen([&](const FocusContext &context) { return context == expected; }), expected);
    EXPECT_TRUE(accessibility.availability().isAvailable());
}

TEST_F(FieldTest, aBrowserWithoutAccessibilityGivesItsNameAndTitle)
{
    const auto window = startChromium(screen, u"area"_s, Text, Dear, false);
    const FocusContext context =
        contextWhen([](const FocusContext &seen) { return !seen.appName.isEmpty(); });
    EXPECT_EQ(context.appName, u"Chromium Web Browser"_s);
    EXPECT_EQ(context.windowTitle, screen.title(window->window()));
    EXPECT_FALSE(context.textBefore);
}

TEST_F(FieldTest, aPageLaidOutInBlocksIsReadWhereTheCursorStands)
{
    const auto window = startChromium(screen, u"rich"_s, u"<p>First</p><p>Second line</p>"_s, {1, 6});
    const FocusContext context = contextWhen(
        [](const FocusContext &seen) { return seen.textAfter.value_or(QString()).contains(u"line"); });
    EXPECT_TRUE(context.textBefore.value_or(QString()).endsWith(u"Second")) << describe(context);
    EXPECT_EQ(context.label, u"Rich"_s);
}

TEST_F(FieldTest, ofTwoMillionCharactersOnlyThoseAroundTheCursorAreRead)
{
    const auto editor = startMousepad(screen, u"0123456789abcdefghi\n"_s.repeated(100000));
    const FocusContext start = contextWithText();
    EXPECT_EQ(start.textBefore, u""_s);
    EXPECT_EQ(start.textAfter, u"0123456789abcdefghi\n"_s.repeated(15));
    screen.keyDown(37);
    screen.tap(End);
    screen.keyUp(37);
    const FocusContext end = contextWhen([](const FocusContext &seen) { return seen.textAfter == u""_s; });
    EXPECT_EQ(end.textBefore, u"0123456789abcdefghi\n"_s.repeated(75));
}

TEST_F(FieldTest, aWindowThatGoesAwayWhileItIsReadEndsNothing)
{
    for (int i = 0; i < 5; ++i) {
        Peer terminal(screen, u"xterm"_s, {u"-T"_s, u"Going"_s, u"-e"_s, u"cat"_s}, u"Going"_s);
        auto capture = FocusCapture::capture(accessibility, SelectionLimit);
        terminal.process().kill();
        awaited(std::move(capture));
    }
    ASSERT_TRUE(screen.waitForNoWindow(u"Going"_s));
    const auto editor = startMousepad(screen, Text);
    EXPECT_EQ(contextWithText().appName, u"Mousepad"_s);
}

TEST_F(FieldTest, aNewAccessibilityBusIsFoundByItself)
{
    const auto editor = startMousepad(screen, Text);
    contextWithText();
    PrivateDesktop::current().endAccessibilityBus();
    EXPECT_EQ(contextWhen([](const FocusContext &context) { return !context.textBefore; }).appName,
              u"Mousepad"_s);
    PrivateDesktop::current().startAccessibilityBus();
    const auto window = startQt(screen, u"entry"_s, Text, Dear);
    expectTheSelection("AXTextField");
}

// Most sessions begin so, and then neither Qt programs nor Firefox show that a field is one for passwords.
TEST_F(FieldTest, aSessionWhoseAccessibilityIsOffIsSwitchedOn)
{
    const QStringList status = {u"call"_s,
                                u"--session"_s,
                                u"--dest"_s,
                                u"org.a11y.Bus"_s,
                                u"--object-path"_s,
                                u"/org/a11y/bus"_s,
                                u"--method"_s,
                                u"org.freedesktop.DBus.Properties.%1"_s,
                                u"org.a11y.Status"_s,
                                u"IsEnabled"_s};
    const auto ask = [&status](const QString &method, const QStringList &value) {
        return run(u"gdbus"_s, QStringList(status).replaceInStrings(u"%1"_s, method) + value);
    };
    ask(u"Set"_s, {u"<false>"_s});
    ASSERT_TRUE(ask(u"Get"_s, {}).contains("false"));
    LinuxAccessibility launched;
    EXPECT_TRUE(eventually([&] { return ask(u"Get"_s, {}).contains("true"); }));
    const auto window = startQt(screen, u"password"_s, Text);
    EXPECT_TRUE(contextWhen([](const FocusContext &context) { return context.isSecure; }).isSecure);
}

TEST(SelectionRepair, anEndThatWasMovedByEmojiIsMovedBack)
{
    const QString emoji = u"\U0001F600"_s;
    const std::tuple<TextRange, qint64, QString, std::optional<TextRange>> rows[] = {
        {{1, 4}, 6, u" Dea"_s, TextRange{2, 4}},              // one emoji before both ends
        {{1, 4}, 2, u" Dea"_s, TextRange{2, 4}},              // selected backwards
        {{0, 3}, 5, emoji + u"a"_s + emoji, TextRange{0, 5}}, // two in it
        {{0, 3}, 0, emoji + u"a"_s + emoji, TextRange{0, 5}},
        {{5, 2}, -1, u"ab"_s, std::nullopt},       // no cursor
        {{0, 2}, 2, emoji + u"a"_s, std::nullopt}, // cannot be
    };
    for (const auto &[reported, caret, between, meant] : rows) {
        EXPECT_EQ(SelectionRepair::repaired(reported, caret, between), meant) << between.toStdString();
    }
}

} // namespace vesk::test
