#include "Windows/SettingsStore.h"

#include "Foundation/Files.h"
#include "Support/Await.h"
#include "Support/TemporaryHome.h"
#include "Windows/ServerAddressField.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

class SettingsStoreTest : public HomeTest {
protected:
    /// As an editor does it that writes into the file itself.
    static void writeInPlace(const QByteArray &content)
    {
        QFile file(Config::file());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
};

const auto setFn = [](Config &config) { config.hotkey = u"fn"_s; };

} // namespace

TEST_F(SettingsStoreTest, anEditIsAppliedToWhatStandsInTheFileAtThatMoment)
{
    SettingsStore store;
    Config byHand;
    byHand.locale = u"en-GB"_s;
    byHand.write(); // nothing has told the store yet

    EXPECT_TRUE(store.change(setFn));

    EXPECT_EQ(Config::load().locale, u"en-GB");
    EXPECT_EQ(Config::load().hotkey, u"fn");
    EXPECT_EQ(store.config(), Config::load());
}

TEST_F(SettingsStoreTest, aChangeByHandArrivesHoweverTheEditorWrites)
{
    SettingsStore store;
    Config byHand;
    for (const QString &locale : {u"en-GB"_s, u"en-AU"_s, u"en-IN"_s, u"en-IE"_s}) {
        byHand.locale = locale;
        if (locale == u"en-AU") {
            writeInPlace(byHand.encode());
        } else {
            byHand.write();
        }
        EXPECT_TRUE(eventually([&] { return store.config().locale == locale; })) << locale.toStdString();
    }
}

TEST_F(SettingsStoreTest, anUnreadableFileIsLeftAloneUntilThePersonGivesItUp)
{
    SettingsStore store;
    store.change(setFn);
    for (const auto &[content, kept] :
         {std::pair<QByteArray, QString>("{\"cleanup\": \"yes\"}", u".unreadable"_s),
          std::pair<QByteArray, QString>("half a fi", u".unreadable2"_s)}) {
        writeInPlace(content);
        EXPECT_FALSE(store.change([](Config &config) { config.cleanup = false; }));
        EXPECT_FALSE(store.isReadable());
        EXPECT_TRUE(store.problem().startsWith(u"config.json cannot be read: "))
            << store.problem().toStdString();
        EXPECT_EQ(Files::read(Config::file()), content);
        EXPECT_EQ(store.config().hotkey, u"fn") << "the last readable settings stay";

        EXPECT_EQ(store.replaceUnreadable(), QString(Config::file() + kept));

        EXPECT_EQ(Files::read(Config::file() + kept), content);
        EXPECT_TRUE(store.isReadable());
        EXPECT_EQ(store.problem(), QString());
        EXPECT_EQ(Config::load().hotkey, u"fn");
    }
}

TEST_F(SettingsStoreTest, aFileRepairedByHandIsNotReplaced)
{
    SettingsStore store;
    writeInPlace("{");
    EXPECT_TRUE(eventually([&] { return !store.isReadable(); }));
    writeInPlace("{\"locale\": \"en-ZA\"}");

    EXPECT_EQ(store.replaceUnreadable(), QString()); // asked for before the repair was noticed

    EXPECT_EQ(store.config().locale, u"en-ZA");
    EXPECT_TRUE(store.isReadable());
}

TEST_F(SettingsStoreTest, aHomeThatCannotBeWrittenKeepsNothingAndSaysSo)
{
    QFile inTheWay(testHome() + u"/Library");
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    SettingsStore store;
    int shown = 0;
    QObject::connect(&store, &SettingsStore::changed, [&] { ++shown; });

    EXPECT_FALSE(store.change(setFn));

    EXPECT_EQ(store.config(), Config());
    EXPECT_EQ(shown, 1) << "the control has to show the old value again";
    EXPECT_FALSE(store.problem().isEmpty());
    EXPECT_TRUE(store.isReadable()) << "there is no file to give up";
    inTheWay.remove();
    EXPECT_TRUE(store.change(setFn));
    EXPECT_EQ(store.problem(), QString());
}

TEST(ServerAddressField, takesOnlyWhatCanBeAServersAddress)
{
    const struct {
        QString typed;
        std::optional<QString> address;
    } rows[] = {
        {u" https://vesk.example/api/v1/ "_s, u"https://vesk.example/api/v1"_s},
        {u"http://127.0.0.1:8080/api/v1"_s, u"http://127.0.0.1:8080/api/v1"_s},
        {u"http://[::1]:8080"_s, u"http://[::1]:8080"_s},
        {u"vesk.example/api/v1"_s, {}},
        {u"https://"_s, {}},
        {u"ftp://vesk.example"_s, {}},
        {u"https://vesk.example/api?v=1"_s, {}},
        {u"https://vesk example/api"_s, {}},
        {{}, {}},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(ServerAddressField::address(row.typed), row.address) << row.typed.toStdString();
    }
}

} // namespace vesk
