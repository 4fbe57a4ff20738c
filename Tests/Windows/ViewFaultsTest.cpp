// What goes wrong around an open window: a disk that takes nothing, a file that changes under a control,
// hardware that goes while a list is open.

#include "Server/AccountFile.h"
#include "Support/TemporaryHome.h"
#include "Windows/ServerAddressField.h"
#include "Windows/ViewsFixture.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTest>

#include <functional>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

class ViewFaultsTest : public ViewsFixture {
protected:
    bool isShown(const QString &sentence) const
    {
        const QList<QLabel *> labels = main->findChildren<QLabel *>();
        return std::ranges::any_of(labels, [&sentence](const QLabel *label) {
            return label->isVisible() && label->text().contains(sentence);
        });
    }

    void addByHand(void (*edit)(Config &))
    {
        Config byHand = Config::load();
        edit(byHand);
        byHand.write();
        ASSERT_TRUE(eventually([&] { return rig.settings.config() == byHand; }));
    }
};

/// Does something while no file can grow. What fails meanwhile cannot be printed into a file either: look at
/// the outcome afterwards.
void onAFullDisk(const std::function<void()> &step)
{
    const FullDisk disk(0);
    step();
}

} // namespace

TEST_F(ViewFaultsTest, onAFullDiskEveryControlShowsWhatIsTrueAndWhy)
{
    rig.settings.change([](Config &config) { config.vocabulary = {u"Vesk"_s}; });
    const Config before = Config::load();
    makeWindows();
    main->present(Page::settings);

    auto *cleanup = labelled<QCheckBox>(*main, u"Clean up what was said"_s);
    onAFullDisk([&] { cleanup->click(); });
    EXPECT_EQ(cleanup->isChecked(), before.cleanup);
    EXPECT_TRUE(isShown(u"config.json cannot be written: "_s));

    auto *key = named<QComboBox>(*main, u"Dictation key"_s);
    key->setFocus();
    onAFullDisk([&] { QTest::keyClick(key, Qt::Key_Down); });
    EXPECT_EQ(key->currentIndex(), 0);

    auto *address = named<QLineEdit>(*main, u"Server address"_s);
    address->setText(u"https://own.example"_s);
    onAFullDisk([&] { QTest::keyClick(address, Qt::Key_Return); });
    EXPECT_EQ(address->text(), before.serverURL);

    main->present(Page::dictionary);
    auto *word = named<QLineEdit>(*main, u"New word"_s);
    word->setText(u"kept"_s);
    onAFullDisk([&] { QTest::keyClick(word, Qt::Key_Return); });
    EXPECT_EQ(named<QListView>(*main, u"Dictionary"_s)->model()->rowCount(), 1);
    EXPECT_EQ(word->text(), u"kept") << "it need not be typed again";
    EXPECT_EQ(Config::load(), before);

    QTest::keyClick(word, Qt::Key_Return); // there is room again
    EXPECT_EQ(Config::load().vocabulary.join(u'|'), u"Vesk|kept");
    EXPECT_FALSE(isShown(u"cannot be written"_s));
}

TEST_F(ViewFaultsTest, aServerThatCannotBeKeptDoesNotEndTheSignIn)
{
    AccountFile{u"token"_s, u"maria@example.com"_s}.write();
    WindowsRig signedIn(clock);
    ServerAddressField server(signedIn.settings, signedIn.account);
    auto *address = named<QLineEdit>(server, u"Server address"_s);
    const QString before = address->text();
    address->setText(u"https://own.example"_s);
    onAFullDisk([&] { QTest::keyClick(address, Qt::Key_Return); });
    EXPECT_EQ(address->text(), before);
    EXPECT_TRUE(signedIn.account.account());
    EXPECT_TRUE(AccountFile::read());
}

TEST_F(ViewFaultsTest, whatIsBeingTypedSurvivesAChangeByHand)
{
    makeWindows();
    main->present(Page::settings);
    auto *address = named<QLineEdit>(*main, u"Server address"_s);
    auto *trial = named<QWidget>(*main, u"Try it here"_s);
    address->setFocus();
    address->setText(u"https://half.an"_s);
    trial->setProperty("plainText", u"tried"_s);
    addByHand([](Config &config) { config.cleanup = !config.cleanup; });
    EXPECT_EQ(address->text(), u"https://half.an");
    EXPECT_EQ(trial->property("plainText").toString(), u"tried");
    addByHand([](Config &config) { config.serverURL = u"https://by.hand"_s; });
    EXPECT_EQ(address->text(), u"https://by.hand") << "what is in use goes before half an address";
}

TEST_F(ViewFaultsTest, anOpenListOfChoicesOutlastsNewSettingsAndHardwareThatGoes)
{
    makeWindows();
    main->present(Page::settings);
    auto *microphone = named<QComboBox>(*main, u"Microphone"_s);
    auto *language = named<QComboBox>(*main, u"Language on this computer"_s);
    for (QComboBox *box : {microphone, language}) {
        box->showPopup();
        settle();
        rig.desktop.sound.unplug(u"microphone in the lid"_s);
        rig.desktop.sound.unplug(u"AirPods of Maria"_s);
        addByHand([](Config &config) { config.locale += u"-x"_s; }); // a choice that was not offered
        QTest::keyClick(box->view(), Qt::Key_Home);
        QTest::keyClick(box->view(), Qt::Key_Down);
        QTest::keyClick(box->view(), Qt::Key_Return);
        settle();
    }
    EXPECT_EQ(Config::load().microphone, u"system");
    EXPECT_EQ(Config::load().locale, u"en-GB");
    EXPECT_EQ(microphone->count(), 2);
    EXPECT_EQ(language->findText(u"-x"_s, Qt::MatchContains), -1) << "what nobody uses is not offered";
    EXPECT_TRUE(eventually([&] { return isShown(u"No microphone found"_s); }));
}

TEST_F(ViewFaultsTest, fiveThousandWordsArePastedByKeyAndByMenu)
{
    QStringList many;
    for (int i = 0; i < 5000; ++i) {
        many.append(u"word %1"_s.arg(i));
    }
    makeWindows();
    main->present(Page::dictionary);
    QGuiApplication::clipboard()->setText(many.join(u'\n'));
    auto *entry = named<QLineEdit>(*main, u"New word"_s);
    auto *list = named<QListView>(*main, u"Dictionary"_s);
    QTest::keySequence(entry, QKeySequence::Paste);
    EXPECT_EQ(list->model()->rowCount(), 5000);
    EXPECT_TRUE(entry->text().isEmpty());
    EXPECT_TRUE(isShown(u"words added."_s));
    labelled<QPushButton>(*main, u"Undo"_s)->click();
    EXPECT_EQ(list->model()->rowCount(), 0);
    entry->paste();
    labelled<QPushButton>(*main, u"Add"_s)->click();
    EXPECT_EQ(Config::load().vocabulary, many);
}

TEST_F(ViewFaultsTest, twoWindowsAskedForAtOnceBothShowWhatComesAndGoes)
{
    rig.desktop.recording = Availability::unavailable(u"It is gone."_s);
    makeWindows();
    main->present(Page::home);
    setup->present();
    setup->present(); // asked for once more
    main->present(Page::home);
    EXPECT_TRUE(isShown(u"It is gone."_s));
    setup->close();
    rig.desktop.recording = Availability::available();
    EXPECT_TRUE(eventually([&] { return !isShown(u"It is gone."_s); })) << "the other window still looks";
    main->close();
    rig.desktop.recording = Availability::unavailable(u"Gone again."_s);
    setup->present();
    EXPECT_FALSE(model.isReady());
}

} // namespace vesk::test
