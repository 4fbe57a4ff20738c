#include "Dictation/Hotkey.h"

#include "Support/FakeKeyEvents.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace vesk {

namespace {

using enum HotkeyKey;
using Flags = std::pair<int, quint64>; ///< key code and flags; a key code of 0 is a letter
constexpr Flags Letter = {0, 0};

struct Row {
    const char *what;
    std::vector<HotkeyKey> watched;
    std::vector<Flags> events;
    QString expected; ///< P and R with the key's first letters, O for another key
};

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
    const std::vector<Row> rows = {
        {"press and release", {rightOption}, {{61, 0x40}, {61, 0}}, u"P:rightOption R:rightOption"_qs},
        {"the left key of the same name", {rightOption}, {{58, 0x20}, {58, 0}}, {}},
        {"the left key does not hide the right one",
         {rightOption},
         {{58, 0x20}, {61, 0x60}, {61, 0x20}},
         u"P:rightOption R:rightOption"_qs},
        {"a second watched key is another key",
         {rightOption, rightCommand},
         {{61, 0x40}, {54, 0x50}, {54, 0x40}, {61, 0}},
         u"P:rightOption O O R:rightOption"_qs},
        {"a letter while held",
         {rightOption},
         {{61, 0x40}, Letter, Letter, {61, 0}},
         u"P:rightOption O O R:rightOption"_qs},
        {"a letter alone", {rightOption}, {Letter}, {}},
        {"a repeated press",
         {rightOption},
         {{61, 0x40}, {61, 0x40}, {61, 0}},
         u"P:rightOption R:rightOption"_qs},
        {"a release twice", {rightOption}, {{61, 0x40}, {61, 0}, {61, 0}}, u"P:rightOption R:rightOption"_qs},
        {"a release of a key that was down before", {rightOption}, {{61, 0}}, {}},
        {"nothing watched", {}, {{61, 0x40}, {61, 0}}, {}},
        {"fn", {fn}, {{63, 0x80'0000}, {63, 0}}, u"P:fn R:fn"_qs},
        {"a key that is not watched", {rightOption}, {{54, 0x10}, {54, 0}}, {}},
    };
    for (const Row &row : rows) {
        watched = row.watched;
        said.clear();
        for (const auto &[keyCode, flags] : row.events) {
            if (keyCode == 0) {
                events.keyDown();
            } else {
                events.flagsChanged(keyCode, flags);
            }
        }
        EXPECT_EQ(said.join(u' '), row.expected) << row.what;
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
