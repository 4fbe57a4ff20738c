// What an open window keeps busy, and what it leaves alone.

#include "Windows/MicrophoneLevel.h"
#include "Windows/SettingsView.h"
#include "Windows/ViewsFixture.h"

#include <QScrollBar>

namespace vesk::test {

using namespace Qt::StringLiterals;

class RestTest : public ViewsFixture {
protected:
    RestTest() { makeWindows(); }

    /// Whether the microphone is open, once that is so.
    bool becomesOpen(bool isOpen)
    {
        return eventually([&] { return rig.desktop.sound.recordings() == (isOpen ? 1 : 0); });
    }
};

TEST_F(RestTest, theMicrophoneIsOpenOnlyWhileItsLevelIsInSight)
{
    EXPECT_EQ(rig.desktop.sound.engineCount(), 0);
    main->present(Page::settings);
    main->resize(main->minimumSizeHint());
    settle();
    auto *page = main->findChild<SettingsView *>();
    auto *level = main->findChild<MicrophoneLevel *>();
    page->verticalScrollBar()->setValue(0);
    EXPECT_TRUE(becomesOpen(false)) << "it stands further down";
    EXPECT_EQ(rig.desktop.keys.watching(), 1) << "the keys can be tried";

    page->ensureWidgetVisible(level);
    EXPECT_TRUE(becomesOpen(true));
    main->setWindowState(Qt::WindowMinimized);
    EXPECT_TRUE(becomesOpen(false));
    main->present(Page::settings);
    EXPECT_TRUE(becomesOpen(true));
    page->verticalScrollBar()->setValue(0);
    EXPECT_TRUE(becomesOpen(false));
    page->ensureWidgetVisible(level);
    EXPECT_TRUE(becomesOpen(true));
    main->present(Page::home);
    EXPECT_TRUE(becomesOpen(false));
    EXPECT_EQ(rig.desktop.keys.watching(), 0);
}

} // namespace vesk::test
