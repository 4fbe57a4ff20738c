#include "Support/Await.h"
#include "Support/ManualClock.h"
#include "Support/TemporaryHome.h"
#include "Support/WindowsRig.h"

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;
using Kind = Requirement::Kind;
using State = Requirement::State;
using Help = Requirement::Help;

namespace {

const Availability Gone = Availability::unavailable(u"It is gone."_s);

class SetupModelTest : public HomeTest {
protected:
    Requirement find(Kind kind) const { return find(kind, model); }

    static Requirement find(Kind kind, const SetupModel &of)
    {
        for (const Requirement &requirement : of.requirements()) {
            if (requirement.kind == kind) {
                return requirement;
            }
        }
        throw std::runtime_error("no such requirement");
    }

    ManualClock clock;
    test::WindowsRig rig{clock};
    SetupModel model{rig.services()};
};

} // namespace

TEST_F(SetupModelTest, whatIsMissingIsSaidInTheServicesOwnWords)
{
    EXPECT_TRUE(model.isReady());
    const struct {
        Kind kind;
        Availability *service;
        State state;
    } rows[] = {
        {Kind::microphone, &rig.desktop.recording, State::missing},
        {Kind::keyboard, &rig.desktop.keyboard, State::missing},
        {Kind::speech, &rig.model, State::missing},
        {Kind::fields, &rig.desktop.programs.available, State::advised},
        {Kind::tray, &rig.tray, State::advised},
    };
    for (const auto &row : rows) {
        *row.service = Gone;
        EXPECT_EQ(model.isReady(), row.state != State::missing) << SetupModel::title(row.kind).toStdString();
        EXPECT_EQ(find(row.kind).state, row.state);
        EXPECT_EQ(find(row.kind).sentence, u"It is gone.");
        *row.service = Availability::available();
    }
    EXPECT_TRUE(model.isReady());
}

TEST_F(SetupModelTest, theMicrophoneInUseIsNamedAndNoneIsMissing)
{
    EXPECT_EQ(find(Kind::microphone).sentence, u"The microphone in the lid");
    rig.settings.change([](Config &config) { config.microphone = u"system"_s; });
    EXPECT_EQ(find(Kind::microphone).sentence, u"The AirPods of Maria");
    rig.desktop.sound.unplug(u"AirPods of Maria"_s);
    rig.desktop.sound.unplug(u"microphone in the lid"_s);
    EXPECT_FALSE(model.isReady());
    EXPECT_EQ(find(Kind::microphone).sentence, u"No microphone found");
}

TEST_F(SetupModelTest, theDiskIsLeftAloneWhileTheModelIsThere)
{
    WindowServices counted = rig.services();
    int looks = 0;
    int readings = 0;
    counted.tray = [&] { return ++looks, rig.tray; };
    counted.speechModel = [&](const QString &) { return ++readings, rig.model; };
    SetupModel watched(counted);
    watched.setWatching(true);
    readings = 0;
    const int before = looks;
    EXPECT_TRUE(eventually([&] { return looks >= before + 4; }));
    EXPECT_LE(readings, 1);

    rig.model = Gone;
    rig.settings.change([](Config &config) { config.locale = u"en-GB"_s; });
    EXPECT_FALSE(watched.isReady()) << "another language asks at once";
    rig.model = Availability::available(); // it was installed
    EXPECT_TRUE(eventually([&] { return find(Kind::speech, watched).state == State::met; }));
}

TEST_F(SetupModelTest, aKeyThatTypesCharactersIsAnsweredWithAnother)
{
    rig.desktop.keys.altGr = virtualKeyCode(HotkeyKey::rightOption);
    EXPECT_TRUE(model.isReady()) << "dictation works with it";
    EXPECT_EQ(find(Kind::dictationKey).help, Help::useRightCommand);

    model.useRightCommand();

    EXPECT_EQ(find(Kind::dictationKey).state, State::met);
    EXPECT_EQ(Config::load().dictationKey(), HotkeyKey::rightCommand);
    EXPECT_EQ(Config::load().commandKey(), HotkeyKey::rightOption) << "voice commands must not fall silent";
}

TEST_F(SetupModelTest, aKeyThatIsNeverSeenIsMissing)
{
    rig.settings.change([](Config &config) { config.hotkey = u"fn"_s; });
    EXPECT_TRUE(model.isReady());
    rig.desktop.keys.unseenKey = virtualKeyCode(HotkeyKey::fn);
    EXPECT_FALSE(model.isReady());
    EXPECT_EQ(find(Kind::dictationKey).help, Help::chooseKey);
    rig.desktop.keys.state = Gone; // one cause, one sentence
    rig.desktop.keyboard = Gone;
    EXPECT_FALSE(model.isReady());
    EXPECT_EQ(find(Kind::dictationKey).state, State::met);
}

} // namespace vesk
