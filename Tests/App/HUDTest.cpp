#include "App/HUD.h"

#include "App/HUDPanel.h"
#include "Platform/Compositing.h"
#include "Support/Await.h"
#include "Support/ManualClock.h"

#include <QAbstractEventDispatcher>
#include <QApplication>

#include <gtest/gtest.h>

namespace vesk {

namespace {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

struct SomeCompositing final : Compositing {
    bool isActive() const override { return true; }
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
    SomeCompositing compositing;
    HUD hud{clock, compositing};
    const QString longText = u"one word after the other "_s.repeated(10);
};

} // namespace

TEST_F(HUDTest, saysInWordsWhatItShows)
{
    hud.showListening(false, false);
    EXPECT_EQ(panel().accessibleName(), u"Listening");
    hud.showListening(true, true);
    EXPECT_EQ(panel().accessibleName(), u"Listening, Hands-free, Command");
    EXPECT_EQ(panel().width(), 151) << "with room for both signs";
}

TEST_F(HUDTest, aMessageIsOneLineAndCutAtItsTail)
{
    hud.showText(longText, false);
    EXPECT_EQ(panel().width(), 552);
    const QImage cut = panel().grab().toImage();
    hud.showText(QString(longText + u"and more"_s), false);
    EXPECT_EQ(panel().grab().toImage(), cut);
    hud.showText(u"first\nsecond"_s, false);
    const int width = panel().width();
    hud.showText(u"first second"_s, false);
    EXPECT_EQ(panel().width(), width);
    EXPECT_LT(width, 200);
    hud.showText(longText, true);
    EXPECT_EQ(panel().width(), 576);
}

TEST_F(HUDTest, aFlashHidesItselfUnlessSomethingFollows)
{
    hud.flash(u"Copied"_s, 5s);
    clock.advance(4999ms);
    EXPECT_TRUE(panel().isVisible());
    clock.advance(1ms);
    EXPECT_FALSE(panel().isVisible());

    const std::function<void()> followers[] = {
        [&] { hud.showListening(false, false); },
        [&] { hud.showText(u"Working"_s, true); },
        [&] { hud.flash(u"Later"_s, 60s); },
    };
    for (const auto &follow : followers) {
        hud.flash(u"Copied"_s, 5s);
        clock.advance(2s);
        follow();
        clock.advance(10s);
        EXPECT_TRUE(panel().isVisible());
    }
}

TEST(HUD, mayEndBeforeItsFlash)
{
    ManualClock clock;
    const SomeCompositing compositing;
    std::make_unique<HUD>(clock, compositing)->flash(u"Copied"_s, 5s);
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

TEST_F(HUDTest, nothingRunsWhileItIsHiddenOrStill)
{
    hud.showText(u"Working"_s, true);
    EXPECT_TRUE(hasTimer());
    const QImage before = panel().grab().toImage();
    EXPECT_TRUE(eventually([&] { return panel().grab().toImage() != before; })) << "the spinner stands still";
    hud.hide();
    EXPECT_FALSE(hasTimer());
    hud.showText(u"Working"_s, true);
    hud.showText(u"Done"_s, false);
    EXPECT_FALSE(hasTimer());
    hud.showListening(false, false);
    EXPECT_FALSE(hasTimer());
}

} // namespace vesk
