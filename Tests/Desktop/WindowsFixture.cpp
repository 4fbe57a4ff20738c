#include "Desktop/WindowsFixture.h"

#include "Dictation/HistoryStore.h"
#include "Foundation/Config.h"
#include "Support/TemporaryHome.h"

namespace vesk::test {

using namespace Qt::StringLiterals;

WindowsFixture::WindowsFixture()
{
    emptyTestHome();
    Config config;
    config.serverURL = server.baseURL().toString();
    config.write();
}

void WindowsFixture::open(const QString &page)
{
    peer = std::make_unique<Process>(
        QStringLiteral(VESK_TEST_WINDOWS_PEER),
        Process::Options{
            {}, QProcess::SeparateChannels, {}, {{u"QT_LINUX_ACCESSIBILITY_ALWAYS_ON"_s, u"1"_s}}});
    peer->readLine(); // "ready"
    user = std::make_unique<ControlUser>(peer->id());
    tell(page);
}

void WindowsFixture::toFront()
{
    const auto window = screen.waitForWindow(u"^Vesk$"_s);
    ASSERT_TRUE(window);
    ASSERT_TRUE(screen.activate(*window));
}

void WindowsFixture::tell(const QString &command)
{
    peer->write(command.toUtf8() + '\n');
    EXPECT_EQ(peer->readLine(), "ok");
}

QString WindowsFixture::clipboard()
{
    peer->write("clipboard\n");
    const QByteArray content = QByteArray::fromPercentEncoding(peer->readLine());
    EXPECT_EQ(peer->readLine(), "ok");
    return QString::fromUtf8(content);
}

void WindowsFixture::choose(const QString &name, const QString &entry, int number)
{
    ASSERT_TRUE(user->press(u"combo box"_s, name)) << name.toStdString();
    ASSERT_TRUE(user->sees(entry));
    screen.tap(Home);
    for (int i = 0; i < number; ++i) {
        screen.tap(Down);
    }
    screen.tap(Return);
}

void writeHistory(const QStringList &texts)
{
    HistoryStore written;
    for (const QString &text : texts) {
        Dictation entry;
        entry.date = QDateTime::currentDateTimeUtc();
        entry.kind = u"dictation"_s;
        entry.raw = u"um "_s + text.toLower();
        entry.text = text;
        written.append(entry);
    }
}

} // namespace vesk::test
