#include "Dictation/ControllerTest.h"

#include "Dictation/Rewrite.h"

namespace vesk {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

ControllerTest::ControllerTest()
{
    const QString temporary = testHome() + u"/tmp"_s;
    QDir(temporary).removeRecursively();
    QDir().mkpath(temporary);
    qputenv("TMPDIR", temporary.toLocal8Bit());
    QFile::remove(HistoryStore::file());
    QFile::remove(Log::file());
    history.clear();
    sound.plug(u"desk"_s);
    sound.sound(u"desk"_s, 440);
    hear(u"hello there"_s);
    focusField(QString());
    configure([](Config &) {});
    controller = makeController();
}

ControllerTest::~ControllerTest()
{
    controller.reset();
    clock.advance(1min);
    // Recordings that were dropped end on the event loop and use the fakes until then.
    eventually([this] { return sound.engineCount() == 0; });
}

std::unique_ptr<DictationController> ControllerTest::makeController()
{
    return std::make_unique<DictationController>(
        DictationController::Services{clock, permissions, models, files, converters, sound, sound,
                                      accessibility, pasteboard, loan, keys, connection, history},
        display);
}

void ControllerTest::configure(const std::function<void(Config &)> &change)
{
    Config config;
    config.serverURL = server.baseURL().toString();
    change(config);
    config.write();
}

void ControllerTest::signIn() { AccountFile{VeskServer::validToken(), u"someone@example.com"_s}.write(); }

void ControllerTest::focusField(const QString &before, const QString &selected, bool isSecure)
{
    auto program = std::make_shared<FakeProgram>();
    program->front = {u"Editor"_s, u"org.example.Editor"_s, 42};
    program->windowTitle = u"Letter"_s;
    program->strings = {{u"AXRole"_s, u"AXTextArea"_s}};
    if (isSecure) {
        program->strings[u"AXSubrole"_s] = u"AXSecureTextField"_s;
    }
    program->text = QString(before + selected);
    program->selection = {before.size(), selected.size()};
    accessibility.program = program;
}

void ControllerTest::hear(const QString &text) { models.results = {SpeechResult{text, {}, {}}}; }

void ControllerTest::hold(HotkeyKey key, std::chrono::milliseconds time)
{
    display.loudBlocks = 0;
    controller->pressed(key);
    if (display.indicator == DictationController::Indicator::listening) {
        EXPECT_TRUE(eventually([this] { return display.loudBlocks > 3; }));
    }
    clock.advance(time);
}

void ControllerTest::speak(HotkeyKey key, std::chrono::milliseconds time)
{
    hold(key, time);
    controller->released(key);
    EXPECT_TRUE(awaitIdle());
}

bool ControllerTest::awaitIdle()
{
    return eventually([this] { return controller->isIdle(); });
}

} // namespace vesk
