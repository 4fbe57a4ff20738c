#include "Foundation/Config.h"

#include "Foundation/Files.h"
#include "Foundation/Json.h"
#include "Foundation/VeskError.h"
#include "Support/TemporaryHome.h"

#include <QJsonArray>

#include <gmock/gmock.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

class ConfigTest : public HomeTest {
protected:
    static void put(const QByteArray &content)
    {
        Files::makeFolder(Config::directory());
        Files::replace(Config::file(), content);
    }
};

QString failureOfLoading()
{
    try {
        Config::load();
    } catch (const VeskError &error) {
        EXPECT_EQ(error.errorCase(), VeskError::Case::badConfig);
        return error.errorDescription();
    }
    return u"no failure"_s;
}

} // namespace

TEST_F(ConfigTest, aFreshInstallationGetsACompletePrivateFile)
{
    EXPECT_EQ(Config::load(), Config());
    EXPECT_EQ(modeOf(Config::file()), 0600);

    const QByteArray text = Files::read(Config::file());
    const QStringList alphabetical = {u"cleanup"_s,     u"commandHotkey"_s,   u"hotkey"_s,
                                      u"keepHistory"_s, u"locale"_s,          u"meetingReminders"_s,
                                      u"microphone"_s,  u"recordCallAudio"_s, u"serverURL"_s,
                                      u"speech"_s,      u"useAppContext"_s,   u"vocabulary"_s};
    EXPECT_EQ(Json::object(text).keys(), alphabetical);
    qsizetype place = 0;
    for (const QString &key : alphabetical) {
        const qsizetype found = text.indexOf(QByteArray("\n    \"" + key.toUtf8() + "\": "));
        EXPECT_GT(found, place - 1) << key.toStdString();
        place = found;
    }
    EXPECT_THAT(text.toStdString(), testing::HasSubstr("://")); // slashes are not escaped
}

TEST_F(ConfigTest, whatIsWrittenReadsBackEqual)
{
    Config config;
    config.hotkey = u"fn"_s;
    config.commandHotkey = u"off"_s;
    config.locale = u"bg-BG"_s;
    config.microphone = u"system"_s;
    config.cleanup = config.useAppContext = config.keepHistory = false;
    config.recordCallAudio = config.meetingReminders = false;
    config.vocabulary = {u"Zürich"_s, u"\"quoted\" \\ back"_s, u"Надежда"_s};
    config.speech = u"mac"_s;
    config.serverURL = u"http://127.0.0.1:8080/api/v1"_s;
    config.write();
    EXPECT_EQ(Config::load(), config);
}

TEST_F(ConfigTest, missingAndNullKeysKeepTheirDefaultsAndUnknownOnesDoNotMatter)
{
    for (const char *document :
         {"{}", R"({"hotkey":null,"cleanup":null,"vocabulary":null})", R"({"future":[1,{}]})"}) {
        put(document);
        EXPECT_EQ(Config::load(), Config()) << document;
    }
}

TEST_F(ConfigTest, aWrongTypeFailsTheWholeFileNamesTheKeyAndLeavesTheFileAlone)
{
    const std::pair<const char *, const char *> rows[] = {
        {R"({"hotkey":"fn","cleanup":"yes"})",
         "config.json cannot be read: \"cleanup\" must be true or false, not a text"},
        {"[]", "config.json cannot be read: not a JSON object"},
    };
    for (const auto &[document, sentence] : rows) {
        put(document);
        EXPECT_EQ(failureOfLoading().toStdString(), sentence);
        EXPECT_EQ(Files::read(Config::file()), document);
    }
    put("{\"hotkey\": ");
    EXPECT_THAT(failureOfLoading().toStdString(),
                testing::StartsWith("config.json cannot be read: not valid JSON"));
}

TEST_F(ConfigTest, aFileThatCannotBeReadIsTheSystemsOwnFailure)
{
    Files::makeFolder(Config::file()); // a folder in its place
    EXPECT_THROW(Config::load(), FileError);
}

TEST(ConfigKeys, unknownNamesFallBackAndTheCommandKeyNeverDoublesTheDictationKey)
{
    using Key = HotkeyKey;
    const std::tuple<QString, QString, Key, std::optional<Key>> rows[] = {
        {u"rightOption"_s, u"rightCommand"_s, Key::rightOption, Key::rightCommand},
        {u"rightCommand"_s, u"rightOption"_s, Key::rightCommand, Key::rightOption},
        {u"fn"_s, u"fn"_s, Key::fn, std::nullopt},
        {u"fn"_s, u"off"_s, Key::fn, std::nullopt},
        {u"capsLock"_s, u"rightCommand"_s, Key::rightOption, Key::rightCommand},
        {u"capsLock"_s, u"rightOption"_s, Key::rightOption, std::nullopt},
        {u"RightOption"_s, u"Fn"_s, Key::rightOption, std::nullopt},
        {u""_s, u""_s, Key::rightOption, std::nullopt},
    };
    for (const auto &[hotkey, commandHotkey, dictation, command] : rows) {
        SCOPED_TRACE(QString(hotkey + u" / " + commandHotkey).toStdString());
        Config config;
        config.hotkey = hotkey;
        config.commandHotkey = commandHotkey;
        EXPECT_EQ(config.commandKey(), command);
        EXPECT_EQ(config.watchedKeys(),
                  command ? (std::vector{dictation, *command}) : std::vector{dictation});
    }
}

} // namespace vesk
