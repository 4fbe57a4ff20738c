#include "Desktop/ApplicationFixture.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

namespace vesk::test {

using namespace Qt::StringLiterals;

std::unique_ptr<ShippedApplication> ApplicationTest::theApplication;

ApplicationTest::ApplicationTest() { m_logBefore = ShippedApplication::log().size(); }

ShippedApplication &ApplicationTest::application()
{
    if (!theApplication) {
        theApplication = std::make_unique<ShippedApplication>(QStringLiteral(VESK_TEST_PROGRAM));
    }
    return *theApplication;
}

void ApplicationTest::TearDownTestSuite() { theApplication.reset(); }

void ApplicationTest::configure(Config config, bool isSignedIn)
{
    config.serverURL = server.baseURL().toString();
    config.write();
    if (isSignedIn) {
        AccountFile{VeskServer::validToken(), u"someone@example.com"_s}.write();
    } else {
        AccountFile::remove();
    }
    application();
}

Config ApplicationTest::byUpload()
{
    Config config;
    config.speech = u"cloud"_s;
    return config;
}

QByteArray ApplicationTest::clipboard()
{
    try {
        return run(u"xclip"_s, {u"-selection"_s, u"clipboard"_s, u"-o"_s});
    } catch (const std::runtime_error &) { // between two owners
        return {};
    }
}

std::unique_ptr<Process> ApplicationTest::copy(const QByteArray &text)
{
    auto program = std::make_unique<Process>(
        u"xclip"_s,
        Process::Options{{u"-selection"_s, u"clipboard"_s, u"-quiet"_s}, QProcess::SeparateChannels, {}, {}});
    program->write(text);
    program->closeInput();
    EXPECT_TRUE(eventually([&text] { return clipboard() == text; }));
    return program;
}

QString ApplicationTest::briefly()
{
    const QString clip = QDir::homePath() + u"/brief.wav";
    if (!QFile::exists(clip)) {
        run(u"sox"_s,
            {QStringLiteral(VESK_TEST_SPEECH_FOLDER "/sample.wav"), clip, u"trim"_s, u"0"_s, u"2.5"_s});
    }
    return clip;
}

void ApplicationTest::speak(int key)
{
    screen.keyDown(key);
    const auto voice = application().soundServer().play(briefly(), u"desk"_s);
    ASSERT_TRUE(eventually([&] { return !voice->isRunning(); }));
    screen.keyUp(key);
}

bool ApplicationTest::isLogged(const QByteArray &text)
{
    return eventually([&] { return ShippedApplication::log().mid(m_logBefore).contains(text); },
                      std::chrono::minutes(1));
}

QString ApplicationTest::textOf(const Peer &peer, const std::function<bool(const QString &)> &condition)
{
    QString text;
    eventually(
        [&] { // the loopback server answers in between
            const auto field = reader.focusedField(peer.process().id());
            text = field ? field->value("text"_L1).toString() : QString();
            return condition(text);
        },
        std::chrono::minutes(1));
    return text;
}

void ApplicationTest::answer(const QByteArray &operation, int status, const QByteArray &body,
                             std::chrono::milliseconds delay)
{
    Script script;
    script.answer = HttpAnswer{status, body, {}};
    script.delay = delay;
    server.script(operation, script);
}

void ApplicationTest::selectAll()
{
    constexpr int LeftControl = 37;
    constexpr int KeyA = 38;
    screen.keyDown(LeftControl);
    screen.tap(KeyA);
    screen.keyUp(LeftControl);
}

QStringList ApplicationTest::placesOf(const QString &secret) const
{
    QStringList places;
    int count = 0;
    for (const QString &folder : {QDir::homePath(), QDir::tempPath()}) {
        QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            ++count;
            if (file.open(QIODevice::ReadOnly) && file.readAll().contains(secret.toUtf8())) {
                places.append(file.fileName());
            }
        }
    }
    for (const ReceivedRequest &request : server.requests()) {
        if (request.body.contains(secret.toUtf8())) {
            places.append(QString::fromUtf8(request.path));
        }
    }
    EXPECT_GT(count, 0) << "the log and the settings at least";
    return places;
}

} // namespace vesk::test
