#pragma once

#include "Dictation/DictationController.h"
#include "Dictation/HistoryStore.h"
#include "Dictation/PasteboardLoan.h"
#include "Platform/Linux/Speech/FfmpegAudioConverter.h"
#include "Platform/Linux/Speech/FfmpegAudioFiles.h"
#include "Server/ServerTest.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeSpeech.h"
#include "Support/ManualClock.h"
#include "Support/TemporaryHome.h"

#include <QDir>

namespace vesk {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

/// What the person sees, written down.
class RecordedDisplay final : public DictationController::Display {
public:
    void setIndicator(DictationController::Indicator state) override { indicator = state; }
    void showListening(bool locked, bool command) override
    {
        said.append(u"listening%1%2"_s.arg(locked ? u" locked" : u"", command ? u" command" : u""));
    }
    void setLevel(float level) override { loudBlocks += level > 0.5F ? 1 : 0; }
    void showText(const QString &text, bool) override { said.append(text); }
    void flash(const QString &text, std::chrono::milliseconds time) override
    {
        said.append(u"%1 (%2 s)"_s.arg(text).arg(time.count() / 1000));
    }
    void hide() override { said.append(u"-"_s); }
    void openSetup() override { said.append(u"set-up"_s); }
    void noticeAccount(const ServerError &error) override { noticed.append(error.errorDescription()); }

    /// What is seen now.
    QString last() const { return said.isEmpty() ? QString() : said.last(); }

    DictationController::Indicator indicator = DictationController::Indicator::idle;
    int loudBlocks = 0;
    QStringList said;
    QStringList noticed;
};

/// A controller on a computer of fakes, with a real server on a loopback port and real sound files.
class ControllerTest : public ServerTest {
protected:
    ControllerTest()
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
    ~ControllerTest() override
    {
        controller.reset();
        clock.advance(1min);
        // Recordings that were dropped end on the event loop and use the fakes until then.
        eventually([this] { return sound.engineCount() == 0; });
    }

    /// Settings as they stand in the file, pointing at the server.
    void configure(const std::function<void(Config &)> &change)
    {
        Config config;
        config.serverURL = server.baseURL().toString();
        change(config);
        config.write();
    }
    void signIn() { AccountFile{VeskServer::validToken(), u"someone@example.com"_s}.write(); }
    /// A program in front with a field that holds this.
    void focusField(const QString &before, const QString &selected = {}, bool isSecure = false)
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
    /// What the recogniser on the machine hears.
    void hear(const QString &text) { models.results = {SpeechResult{text, {}, {}}}; }

    /// Holds the key until sound has come in, for as long as the clock says.
    void hold(HotkeyKey key, std::chrono::milliseconds time)
    {
        display.loudBlocks = 0;
        controller->pressed(key);
        if (display.indicator == DictationController::Indicator::listening) {
            EXPECT_TRUE(eventually([this] { return display.loudBlocks > 3; }));
        }
        clock.advance(time);
    }
    /// A whole dictation or command, until its result is seen.
    void speak(HotkeyKey key, std::chrono::milliseconds time = std::chrono::seconds(2))
    {
        hold(key, time);
        controller->released(key);
        EXPECT_TRUE(awaitIdle());
    }
    bool awaitIdle()
    {
        return eventually([this] { return controller->isIdle(); });
    }

    QString pasted() const { return pasteboard.text(); }
    /// Recordings and their marks in the temporary folder.
    static QStringList recordings() { return QDir::temp().entryList({u"vesk-*"_s}, QDir::Files); }

    ManualClock clock;
    FakeDesktop desktop{clock, test::FakeSound::Source::tones};
    test::FakeSound &sound = desktop.sound;
    FakeAccessibility &accessibility = desktop.programs;
    FakePasteboard &pasteboard = desktop.board;
    FakeKeyPoster &keys = desktop.poster;
    struct {
        Availability &sound;
    } permissions{desktop.recording};
    FakeSpeechModels models;
    FfmpegAudioFiles files;
    FfmpegAudioConverters converters;
    PasteboardLoan loan{pasteboard, clock};
    HistoryStore history;
    RecordedDisplay display;
    std::unique_ptr<DictationController> controller;

    std::unique_ptr<DictationController> makeController()
    {
        return std::make_unique<DictationController>(
            DictationController::Services{clock, desktop.permissions(), models, files, converters, sound,
                                          sound, accessibility, pasteboard, loan, keys, connection, history},
            display);
    }
};

} // namespace vesk
