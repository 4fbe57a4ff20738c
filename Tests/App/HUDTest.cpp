#include "App/HUD.h"

#include "App/HUDPanel.h"
#include "Platform/Compositing.h"
#include "Support/Await.h"
#include "Support/ManualClock.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QScreen>

#include <gtest/gtest.h>

namespace vesk {

namespace {

using namespace std::chrono_literals;

struct SwitchedCompositing final : Compositing {
    bool isOn = true;
    bool isActive() const override { return isOn; }
};

class HUDTest : public testing::Test {
protected:
    static HUDPanel &panel()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *panel = dynamic_cast<HUDPanel *>(widget)) {
                return *panel;
            }
        }
        throw std::runtime_error("no indicator");
    }

    static bool hasTimer()
    {
        return !QAbstractEventDispatcher::instance()->registeredTimers(&panel()).isEmpty();
    }

    /// Whether the pixel in the middle of a bar's column, so high above the middle, is the bar's.
    static bool reaches(int bar, int height)
    {
        const auto x = static_cast<int>(panel().arrangement().barsLeft) + bar * 6 + 1;
        const QColor colour = panel().grab().toImage().pixelColor(x, HUDLayout::Height / 2 - height);
        return colour.red() > 200 && colour.blue() < 150;
    }

    ManualClock clock;
    SwitchedCompositing compositing;
    HUD hud{clock, compositing};
    const QString longText = QStringLiteral("one word after the other ").repeated(10);
};

} // namespace

TEST(HUDLayout, everythingHasItsPlaceWhileListening)
{
    const struct {
        bool isLocked;
        bool isCommand;
        int width;
        QRectF lock;
        QRectF command;
        qreal barsLeft;
    } rows[] = {
        {false, false, 107, {}, {}, 16},
        {true, false, 129, {16, 10, 14, 14}, {}, 38},
        {false, true, 129, {}, {16, 9, 16, 16}, 38},
        {true, true, 151, {16, 10, 14, 14}, {38, 9, 16, 16}, 60},
    };
    for (const auto &row : rows) {
        const HUDLayout layout = HUDLayout::listening(row.isLocked, row.isCommand);
        EXPECT_EQ(layout.width, row.width);
        EXPECT_EQ(layout.lock, row.lock);
        EXPECT_EQ(layout.command, row.command);
        EXPECT_EQ(layout.barsLeft, row.barsLeft);
        EXPECT_EQ(HUDLayout::bar(12, 1, layout.barsLeft).right(), row.width - 16);
    }
    EXPECT_EQ(HUDLayout::bar(0, 0, 16), QRectF(16, 15, 3, 4));
    EXPECT_EQ(HUDLayout::bar(2, 1, 16), QRectF(28, 5, 3, 24));
    EXPECT_EQ(HUDLayout::bar(1, 0.5, 38), QRectF(44, 10, 3, 14));
}

TEST(HUDLayout, aMessageIsAsWideAsItsTextUpToALimit)
{
    const struct {
        qreal drawn;
        bool isSpinning;
        int width;
        QRectF label;
    } rows[] = {
        {40.2, false, 32 + 47, {16, 9, 47, 16}},       {40.2, true, 24 + 32 + 47, {40, 9, 47, 16}},
        {514, false, 32 + 520, {16, 9, 520, 16}},      {514.1, false, 32 + 520, {16, 9, 520, 16}},
        {9000, true, 24 + 32 + 520, {40, 9, 520, 16}},
    };
    for (const auto &row : rows) {
        const HUDLayout layout = HUDLayout::message(row.drawn, 16, row.isSpinning);
        EXPECT_EQ(layout.width, row.width) << row.drawn;
        EXPECT_EQ(layout.label, row.label) << row.drawn;
        EXPECT_EQ(layout.spinner, row.isSpinning ? QRectF(16, 9, 16, 16) : QRectF()) << row.drawn;
    }
    // Right of another screen, above a panel of 40.
    EXPECT_EQ(HUDLayout::listening(true, false).frame({1920, 0, 1280, 984}), QRect(1920 + 575, 922, 129, 34));
}

TEST_F(HUDTest, standsAtTheBottomOfTheScreenAndTakesNothing)
{
    hud.showListening(false, false);
    ASSERT_TRUE(panel().isVisible());
    const QRect visible = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_EQ(panel().geometry(),
              QRect(visible.x() + (visible.width() - 107) / 2, visible.y() + visible.height() - 62, 107, 34));
    EXPECT_NE(QApplication::activeWindow(), &panel());
    EXPECT_EQ(panel().accessibleName(), u"Listening");
    hud.showListening(true, true);
    EXPECT_EQ(panel().width(), 151);
    EXPECT_EQ(panel().accessibleName(), u"Listening, Hands-free, Command");
}

TEST_F(HUDTest, aMessageIsOneLineAndCutAtItsTail)
{
    hud.showText(longText, false);
    EXPECT_EQ(panel().width(), 552);
    const QImage cut = panel().grab().toImage();
    hud.showText(QString(longText + QStringLiteral("and more")), false);
    EXPECT_EQ(panel().grab().toImage(), cut);
    hud.showText(QStringLiteral("first\nsecond"), false);
    const int width = panel().width();
    hud.showText(QStringLiteral("first second"), false);
    EXPECT_EQ(panel().width(), width);
    EXPECT_LT(width, 200);
    hud.showText(longText, true);
    EXPECT_EQ(panel().width(), 576);
}

TEST_F(HUDTest, aFlashHidesItselfUnlessSomethingFollows)
{
    hud.flash(QStringLiteral("Copied"), 5s);
    clock.advance(4999ms);
    EXPECT_TRUE(panel().isVisible());
    clock.advance(1ms);
    EXPECT_FALSE(panel().isVisible());

    const std::function<void()> followers[] = {
        [&] { hud.showListening(false, false); },
        [&] { hud.showText(QStringLiteral("Working"), true); },
        [&] { hud.flash(QStringLiteral("Later"), 60s); },
    };
    for (const auto &follow : followers) {
        hud.flash(QStringLiteral("Copied"), 5s);
        clock.advance(2s);
        follow();
        clock.advance(10s);
        EXPECT_TRUE(panel().isVisible());
    }
}

TEST(HUD, mayEndBeforeItsFlash)
{
    ManualClock clock;
    const SwitchedCompositing compositing;
    std::make_unique<HUD>(clock, compositing)->flash(QStringLiteral("Copied"), 5s);
    clock.advance(5s);
    EXPECT_TRUE(clock.waiting().empty());
}

TEST_F(HUDTest, barsFollowTheLastLevelsAndStartAgainLow)
{
    hud.showListening(false, false);
    EXPECT_FALSE(reaches(0, 4));
    hud.setLevel(1);
    hud.setLevel(7); // more than there is
    EXPECT_TRUE(eventually([] { return reaches(11, 11) && reaches(12, 11); }));
    EXPECT_FALSE(reaches(10, 4));
    hud.setLevel(0);
    EXPECT_TRUE(eventually([] { return reaches(10, 11) && reaches(11, 11) && !reaches(12, 4); }));
    hud.showListening(true, false); // moves, and falls
    EXPECT_TRUE(eventually([] { return !reaches(10, 4) && !reaches(11, 4) && reaches(12, 0); }));
}

TEST_F(HUDTest, levelsUnderAMessageAreNotSeen)
{
    hud.showText(QStringLiteral("Copied"), false);
    const QImage message = panel().grab().toImage();
    hud.setLevel(1);
    EXPECT_EQ(panel().grab().toImage(), message);
    hud.showListening(false, false);
    EXPECT_FALSE(reaches(12, 4));
}

TEST_F(HUDTest, nothingRunsWhileItIsHiddenOrStill)
{
    hud.showText(QStringLiteral("Working"), true);
    EXPECT_TRUE(hasTimer());
    const QImage before = panel().grab().toImage();
    EXPECT_TRUE(eventually([&] { return panel().grab().toImage() != before; })) << "the spinner stands still";
    hud.hide();
    EXPECT_FALSE(hasTimer());
    hud.showText(QStringLiteral("Working"), true);
    hud.showText(QStringLiteral("Done"), false);
    EXPECT_FALSE(hasTimer());
    hud.showListening(false, false);
    EXPECT_FALSE(hasTimer());
}

TEST_F(HUDTest, isCutOutWhereNobodyComposesWindows)
{
    compositing.isOn = false;
    hud.showListening(false, false);
    EXPECT_EQ(panel().mask().boundingRect(), QRect(0, 0, 107, 34));
    EXPECT_FALSE(panel().mask().contains(QPoint(1, 1)));
    hud.showText(QStringLiteral("Working on what was said"), true);
    EXPECT_EQ(panel().mask().boundingRect(), panel().rect());
    compositing.isOn = true;
    hud.showListening(false, false);
    EXPECT_TRUE(panel().mask().isEmpty());
}

} // namespace vesk
