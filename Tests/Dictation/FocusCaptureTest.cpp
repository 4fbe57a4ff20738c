#include "Dictation/FocusCapture.h"

#include "Support/Await.h"
#include "Support/FakeAccessibility.h"
#include "Support/ManualClock.h"

#include <gtest/gtest.h>

namespace vesk {

namespace {

using namespace Qt::StringLiterals;
using MaybeText = std::optional<QString>;

const QString Emoji = u"\U0001F600"_s;

class FocusCaptureTest : public testing::Test {
protected:
    FocusCaptureTest()
    {
        program->front = {u"Editor"_s, u"org.example.editor"_s, 42};
        program->windowTitle = u"Letter"_s;
        program->strings = {{u"AXRole"_s, u"AXTextArea"_s}, {u"AXTitle"_s, u"Body"_s}};
        program->text = u"Dear Sir"_s;
        program->selection = TextRange{5, 0};
        accessibility.program = program;
    }

    FocusContext captured(qint64 selectionLimit = 2000)
    {
        const auto context = awaited(FocusCapture::capture(accessibility, selectionLimit));
        EXPECT_TRUE(context);
        return context.value_or(FocusContext());
    }

    std::shared_ptr<FakeProgram> program = std::make_shared<FakeProgram>();
    FakeAccessibility accessibility;
};

TEST_F(FocusCaptureTest, aFieldIsDescribedWithTheTextAroundItsCursor)
{
    FocusContext expected{u"Editor"_s,  u"org.example.editor"_s,
                          u"Letter"_s,  u"AXTextArea"_s,
                          u"Body"_s,    u"Dear "_s,
                          std::nullopt, u"Sir"_s};
    EXPECT_EQ(captured(), expected);
    program->selection = TextRange{0, 4};
    expected.textBefore = u""_s;
    expected.selectedText = u"Dear"_s;
    expected.textAfter = u" Sir"_s;
    EXPECT_EQ(captured(), expected);
}

TEST_F(FocusCaptureTest, whatIsMissingIsAbsentAndTheRestIsThere)
{
    accessibility.program = nullptr;
    EXPECT_FALSE(awaited(FocusCapture::capture(accessibility, 10)));
    accessibility.program = program;
    program->front.localizedName.reset();
    program->front.bundleIdentifier.reset();
    program->windowTitle.reset();
    program->hasFocusedElement = false;
    EXPECT_EQ(captured(), FocusContext());
}

TEST_F(FocusCaptureTest, ofAPasswordFieldNothingButItsRoleIsAskedFor)
{
    program->strings[u"AXSubrole"_s] = u"AXSecureTextField"_s;
    program->text = u"canary"_s;
    FocusContext expected{u"Editor"_s, u"org.example.editor"_s, u"Letter"_s, u"AXTextArea"_s, {}, {}, {}, {},
                          true};
    EXPECT_EQ(captured(), expected);
    program->asked.removeAll(u"AXManualAccessibility"_s);
    program->asked.sort();
    EXPECT_EQ(program->asked,
              QStringList({u"AXFocusedUIElement"_s, u"AXFocusedWindow"_s, u"AXRole"_s, u"AXSubrole"_s,
                           u"AXTitle"_s}));
}

TEST_F(FocusCaptureTest, theLabelIsTheFirstOfItsCandidatesThatIsNotBlank)
{
    const std::pair<QMap<QString, QString>, MaybeText> rows[] = {
        {{{u"AXPlaceholderValue"_s, u"Subject"_s}, {u"AXDescription"_s, u"described"_s}}, u"Subject"_s},
        {{{u"AXPlaceholderValue"_s, u" \n\t"_s}, {u"AXDescription"_s, u" described\n"_s}}, u"described"_s},
        {{{u"AXDescription"_s, u""_s}, {u"AXTitle"_s, u"titled"_s}}, u"titled"_s},
        {{{u"AXTitle"_s, u"  "_s}}, std::nullopt},
    };
    for (const auto &[strings, label] : rows) {
        program->strings = strings;
        EXPECT_EQ(captured().label, label);
    }
}

/// A row holds for a program that answers ranges and for one that only hands out its whole value.
TEST_F(FocusCaptureTest, theTextIsCutAtItsLimitsAndNeverInsideACharacter)
{
    const auto times = [](const QString &text, int count) { return text.repeated(count); };
    const QString family = u"\U0001F468\u200d\U0001F469\u200d\U0001F467"_s;
    struct Row {
        const char *what;
        QString text;
        TextRange selection;
        QString before;
        MaybeText selected;
        QString after;
        bool isCut = false;
    };
    const Row rows[] = {
        {"start", u"abc"_s, {0, 0}, u""_s, {}, u"abc"_s},
        {"end", u"abc"_s, {3, 0}, u"abc"_s, {}, u""_s},
        {"empty", u""_s, {0, 0}, u""_s, {}, u""_s},
        {"all selected", u"abc"_s, {0, 3}, u""_s, u"abc"_s, u""_s},
        {"long", times(u"a"_s, 4000), {2000, 0}, times(u"a"_s, 1500), {}, times(u"a"_s, 300)},
        {"exactly the limits", times(u"a"_s, 1800), {1500, 0}, times(u"a"_s, 1500), {}, times(u"a"_s, 300)},
        {"long selection", times(u"s"_s, 5000), {0, 5000}, u""_s, times(u"s"_s, 2000), u""_s, true},
        {"selection of the limit", times(u"s"_s, 2000), {0, 2000}, u""_s, times(u"s"_s, 2000), u""_s},
        {"beyond the end", u"abc"_s, {7, 9}, u"abc"_s, u""_s, u""_s},
        {"before the start", u"abc"_s, {-4, 0}, u""_s, {}, u"abc"_s},
        {"absurdly long", u"abc"_s, {1, std::numeric_limits<qint64>::max()}, u"a"_s, u"bc"_s, u""_s, true},
        {"emoji at the cursor", Emoji + u"a"_s + Emoji, {2, 0}, Emoji + u"a"_s, {}, Emoji},
        {"emoji selected", u"a"_s + Emoji + u"b"_s, {1, 1}, u"a"_s, Emoji, u"b"_s},
        {"emoji before", times(Emoji, 2000) + u"ab"_s, {2001, 0}, times(Emoji, 1498) + u"a"_s, {}, u"b"_s},
        {"family at the first cut", family + times(u"a"_s, 1498), {1503, 0}, times(u"a"_s, 1498), {}, u""_s},
        {"family at the last cut", times(u"a"_s, 298) + family, {0, 0}, u""_s, {}, times(u"a"_s, 298)},
        {"accent cut", u"e\u0301"_s + times(u"a"_s, 1499), {1501, 0}, times(u"a"_s, 1499), {}, u""_s},
    };
    for (const bool answersRanges : {true, false}) {
        for (const Row &row : rows) {
            SCOPED_TRACE(testing::Message() << row.what << (answersRanges ? " by range" : " by value"));
            program->text = row.text;
            program->selection = row.selection;
            program->answersRanges = answersRanges;
            program->copied = 0;
            program->valuesCopied = 0;
            const FocusContext context = captured(2000);
            EXPECT_EQ(context.textBefore, row.before);
            EXPECT_EQ(context.selectedText, row.selected);
            EXPECT_EQ(context.textAfter, row.after);
            EXPECT_EQ(context.isSelectionCut, row.isCut);
            EXPECT_LE(program->copied, FocusCapture::BeforeLimit + 2000 + FocusCapture::AfterLimit);
            EXPECT_EQ(program->valuesCopied, answersRanges ? 0 : 1);
        }
    }
}

TEST_F(FocusCaptureTest, theWholeValueServesOnlyBelowItsLimitAndOnlyWithACursor)
{
    program->tellsCount = false; // ranges without a count are as good as none
    for (const bool isTooLong : {false, true}) {
        program->text = QString(isTooLong ? 200000 : 199999, u'a');
        program->selection = TextRange{199990, 9};
        const FocusContext context = captured(4);
        EXPECT_EQ(context.selectedText, isTooLong ? MaybeText() : MaybeText(u"aaaa"_s));
        EXPECT_EQ(context.textBefore.has_value(), !isTooLong);
        EXPECT_TRUE(context.isSelectionCut);
        EXPECT_EQ(context.label, u"Body"_s);
    }
    program->unit = TextUnit::utf16;
    program->text = Emoji + u"ab"_s;
    program->selection = TextRange{3, 0};
    EXPECT_EQ(captured().textBefore, QString(Emoji + u'a'));
    program->text = Emoji.repeated(1000);
    program->selection = TextRange{1501, 0}; // both cuts are in the middle of a pair
    EXPECT_TRUE(captured().textBefore.value_or(QString()).isValidUtf16());
    program->text = Emoji.repeated(100000); // counted in units, not in characters
    EXPECT_FALSE(captured().textBefore);
    program->copiesValue = false;
    program->text = u"short"_s;
    EXPECT_FALSE(captured().textBefore);
    program->valuesCopied = 0;
    program->copiesValue = true;
    program->selection.reset();
    EXPECT_FALSE(captured().textBefore);
    EXPECT_EQ(program->valuesCopied, 0);
}

TEST_F(FocusCaptureTest, aProgramThatDiesBetweenTwoAnswersLeavesWhatItSaidUntilThen)
{
    const FocusContext whole = captured();
    const auto questions = static_cast<int>(program->asked.size());
    for (int answers = 0; answers <= questions; ++answers) {
        program->answersUntilDeath = answers;
        const FocusContext context = captured();
        EXPECT_EQ(context.appName, whole.appName);
        for (const auto member : {&FocusContext::windowTitle, &FocusContext::role, &FocusContext::label,
                                  &FocusContext::textBefore, &FocusContext::textAfter}) {
            EXPECT_TRUE(!(context.*member) || context.*member == whole.*member) << answers;
        }
    }
}

TEST_F(FocusCaptureTest, questionsThatDoNotDependOnEachOtherTravelTogether)
{
    using namespace std::chrono_literals;
    ManualClock clock;
    program->clock = &clock;
    program->delay = 10ms;
    const auto took = [&] {
        const auto start = clock.monotonic();
        const auto outcome = std::make_shared<Outcome<std::optional<FocusContext>>>();
        const Task<> settling = settle(FocusCapture::capture(accessibility, 2000), outcome);
        while (!outcome->value && clock.monotonic() - start < 10s) {
            clock.advance(1ms);
        }
        return clock.monotonic() - start;
    };
    EXPECT_EQ(took(), 40ms) << "element, role, range and label, pieces";
    program->delay = 1h;
    EXPECT_LE(took(), 350ms) << "a hung program costs one call";
}

} // namespace

} // namespace vesk
