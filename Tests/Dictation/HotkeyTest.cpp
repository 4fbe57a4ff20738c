#include "Dictation/Hotkey.h"

#include "Support/FakeKeyEvents.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace vesk {

namespace {

using enum HotkeyKey;
using Flags = std::pair<int, quint64>; ///< key code and flags; a key code of 0 is a letter
constexpr Flags Letter = {0, 0};

class HotkeyTest : public testing::Test {
protected:
    HotkeyTest()
    {
        hotkey.onPress = [this](HotkeyKey key) { said.append(u"P:" + rawValue(key)); };
        hotkey.onRelease = [this](HotkeyKey key) { said.append(u"R:" + rawValue(key)); };
        hotkey.onOtherKey = [this] { said.append(QStringLiteral("O")); };
        hotkey.start();
    }

    FakeKeyEvents events;
    std::vector<HotkeyKey> watched = {rightOption, rightCommand};
    Hotkey hotkey = Hotkey(events, [this] { return watched; });
    QStringList said;
};

} // namespace

TEST_F(HotkeyTest, pressReleaseAndOtherKeysFollowTheWatchedKeys)
{
    const std::vector<HotkeyKey> right = {rightOption};
    // P and R with the key, O for another key.
    const std::tuple<std::vector<HotkeyKey>, std::vector<Flags>, const char *> rows[] = {
        {right, {{61, 0x40}, {61, 0}}, "P:rightOption R:rightOption"},
        {right, {{58, 0x20}, {58, 0}}, ""}, // the left key of the same name
        {right, {{58, 0x20}, {61, 0x60}, {61, 0x20}}, "P:rightOption R:rightOption"},
        {{rightOption, rightCommand},
         {{61, 0x40}, {54, 0x50}, {54, 0x40}, {61, 0}},
         "P:rightOption O O R:rightOption"},
        {right, {{61, 0x40}, Letter, Letter, {61, 0}}, "P:rightOption O O R:rightOption"},
        {right, {Letter}, ""},
        {right, {{61, 0x40}, {61, 0x40}, {61, 0}}, "P:rightOption R:rightOption"}, // a repeated press
        {right, {{61, 0x40}, {61, 0}, {61, 0}}, "P:rightOption R:rightOption"},    // a release twice
        {right, {{61, 0}}, ""}, // of a key that was down before
        {{}, {{61, 0x40}, {61, 0}}, ""},
        {{fn}, {{63, 0x80'0000}, {63, 0}}, "P:fn R:fn"},
        {right, {{54, 0x10}, {54, 0}}, ""},
    };
    int number = 0;
    for (const auto &[keys, sequence, expected] : rows) {
        watched = keys;
        said.clear();
        for (const auto &[keyCode, flags] : sequence) {
            keyCode == 0 ? events.keyDown() : events.flagsChanged(keyCode, flags);
        }
        EXPECT_EQ(said.join(u' ').toStdString(), expected) << "row " << ++number;
    }
}

TEST_F(HotkeyTest, startingAgainNeitherDoublesNorHolds)
{
    events.flagsChanged(61, 0x40);
    hotkey.start();
    EXPECT_EQ(events.watching(), 1);
    events.flagsChanged(61, 0);
    events.flagsChanged(61, 0x40);
    hotkey.stop();
    events.flagsChanged(61, 0);
    EXPECT_EQ(said, (QStringList{u"P:rightOption"_qs, u"P:rightOption"_qs}));
}

TEST_F(HotkeyTest, onlyThePressThatStartsSomethingIsTaken)
{
    EXPECT_EQ(events.keyDown(), KeyUse::ignored);
    EXPECT_EQ(events.flagsChanged(58, 0x20), KeyUse::ignored);
    EXPECT_EQ(events.flagsChanged(61, 0x40), KeyUse::taken);
    EXPECT_EQ(events.flagsChanged(54, 0x50), KeyUse::ignored);
    EXPECT_EQ(events.flagsChanged(61, 0x10), KeyUse::ignored);
}

TEST_F(HotkeyTest, mayBeStoppedByItsOwnCallback)
{
    hotkey.onPress = [this](HotkeyKey) { hotkey.stop(); };
    events.flagsChanged(61, 0x40);
    EXPECT_EQ(events.watching(), 0);
}

} // namespace vesk
