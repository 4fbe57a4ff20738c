#pragma once

#include "Dictation/DictationController.h"
#include "Dictation/HistoryStore.h"
#include "Dictation/PasteboardLoan.h"
#include "Platform/Linux/Speech/FfmpegAudioConverter.h"
#include "Platform/Linux/Speech/FfmpegAudioFiles.h"
#include "Platform/Permissions.h"
#include "Server/ServerTest.h"
#include "Support/FakeAccessibility.h"
#include "Support/FakeKeyPoster.h"
#include "Support/FakePasteboard.h"
#include "Support/FakeSound.h"
#include "Support/FakeSpeech.h"
#include "Support/ManualClock.h"
#include "Support/TemporaryHome.h"

#include <QDir>

namespace vesk {

class FakePermissions final : public Permissions {
public:
    Availability accessibility() const override { return keys; }
    Availability microphone() const override { return sound; }

    Availability keys = Availability::available();
    Availability sound = Availability::available();
};

/// What the person sees, written down.
class RecordedDisplay final : public DictationController::Display {
public:
    void setIndicator(DictationController::Indicator state) override { indicator = state; }
    void showListening(bool locked, bool command) override
    {
        said.append(
            QStringLiteral("listening%1%2").arg(locked ? u" locked" : u"", command ? u" command" : u""));
    }
    void setLevel(float level) override { loudBlocks += level > 0.5F ? 1 : 0; }
    void showText(const QString &text, bool) override { said.append(text); }
    void flash(const QString &text, std::chrono::milliseconds time) override
    {
        said.append(QStringLiteral("%1 (%2 s)").arg(text).arg(time.count() / 1000));
    }
    void hide() override { said.append(QStringLiteral("-")); }
    void openSetup() override { said.append(QStringLiteral("set-up")); }
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
    ControllerTest();
    ~ControllerTest() override;

    /// Settings as they stand in the file, pointing at the server.
    void configure(const std::function<void(Config &)> &change);
    void signIn();
    /// A program in front with a field that holds this.
    void focusField(const QString &before, const QString &selected = {}, bool isSecure = false);
    /// What the recogniser on the machine hears.
    void hear(const QString &text);

    /// Holds the key until sound has come in, for as long as the clock says.
    void hold(HotkeyKey key, std::chrono::milliseconds time);
    /// A whole dictation or command, until its result is seen.
    void speak(HotkeyKey key, std::chrono::milliseconds time = std::chrono::seconds(2));
    bool awaitIdle();

    QString pasted() const { return pasteboard.text(); }
    /// Recordings and their marks in the temporary folder.
    static QStringList recordings()
    {
        return QDir::temp().entryList({QStringLiteral("vesk-*")}, QDir::Files);
    }
    QStringList logged() const { return QString::fromUtf8(log()).split(u'\n', Qt::SkipEmptyParts); }

    ManualClock clock;
    FakePermissions permissions;
    FakeSpeechModels models;
    FfmpegAudioFiles files;
    FfmpegAudioConverters converters;
    test::FakeSound sound{test::FakeSound::Source::tones};
    FakeAccessibility accessibility;
    FakePasteboard pasteboard;
    PasteboardLoan loan{pasteboard, clock};
    FakeKeyPoster keys{clock};
    HistoryStore history;
    RecordedDisplay display;
    std::unique_ptr<DictationController> controller;

    std::unique_ptr<DictationController> makeController();
};

} // namespace vesk
