#pragma once

#include "Desktop/FieldReader.h"
#include "Desktop/Peer.h"
#include "Desktop/ShippedApplication.h"
#include "Foundation/Config.h"
#include "Server/AccountFile.h"
#include "Support/Await.h"
#include "Support/VeskServer.h"

#include <QDir>
#include <QDirIterator>

#include <gtest/gtest.h>

namespace vesk::test {

using namespace Qt::StringLiterals;

/// A person at the private desktop, in front of the application as it is installed. One application for all
/// cases of a suite, because its model loads slowly under the sanitizers; it reads its settings and its
/// sign-in at every press.
class ApplicationTest : public testing::Test {
protected:
    static constexpr int CommandKey = 105; ///< right Control

    static ShippedApplication &application()
    {
        if (!theApplication) {
            theApplication = std::make_unique<ShippedApplication>(QStringLiteral(VESK_TEST_PROGRAM));
        }
        return *theApplication;
    }
    static void TearDownTestSuite() { theApplication.reset(); }

    /// Writes the settings, with the loopback server's address, and the sign-in.
    void configure(Config config, bool isSignedIn)
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

    /// Two and a half seconds of a person's voice; what is understood begins with "Ever tried".
    static QString briefly()
    {
        const QString clip = QDir::homePath() + u"/brief.wav";
        if (!QFile::exists(clip)) {
            run(u"sox"_s,
                {QStringLiteral(VESK_TEST_SPEECH_FOLDER "/sample.wav"), clip, u"trim"_s, u"0"_s, u"2.5"_s});
        }
        return clip;
    }

    /// Holds a key while the brief clip is said.
    void speak(int key = ShippedApplication::DictationKey)
    {
        screen.keyDown(key);
        const auto voice = application().soundServer().play(briefly(), u"desk"_s);
        ASSERT_TRUE(eventually([&] { return !voice->isRunning(); }));
        screen.keyUp(key);
    }

    /// Whether the log gets such a line after what it held when the case began.
    bool isLogged(const QByteArray &text)
    {
        return eventually([&] { return ShippedApplication::log().mid(m_logBefore).contains(text); },
                          std::chrono::minutes(1));
    }

    QString textOf(const Peer &peer, const std::function<bool(const QString &)> &condition)
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

    /// A whole answer of an operation, after a delay.
    void answer(const QByteArray &operation, int status, const QByteArray &body,
                std::chrono::milliseconds delay = {})
    {
        server.script(operation, {.answer = HttpAnswer{status, body, {}}, .delay = delay});
    }

    /// Selects everything in the focused field.
    void selectAll()
    {
        constexpr int LeftControl = 37;
        constexpr int KeyA = 38;
        screen.keyDown(LeftControl);
        screen.tap(KeyA);
        screen.keyUp(LeftControl);
    }

    /// Whether the secret stands in a file of the home or temporary folder, or in anything that the server
    /// was sent.
    QStringList placesOf(const QString &secret) const
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

    /// Settings for the road over the server.
    static Config byUpload()
    {
        Config config;
        config.speech = u"cloud"_s;
        return config;
    }

    /// A program that the person copies from; it runs until somebody else copies.
    static std::unique_ptr<Process> copy(const QByteArray &text)
    {
        auto program =
            std::make_unique<Process>(u"xclip"_s, QStringList{u"-selection"_s, u"clipboard"_s, u"-quiet"_s});
        program->write(text);
        program->closeInput();
        EXPECT_TRUE(eventually([&text] { return clipboard() == text; }));
        return program;
    }
    /// What another program would paste.
    static QByteArray clipboard()
    {
        try {
            return run(u"xclip"_s, {u"-selection"_s, u"clipboard"_s, u"-o"_s});
        } catch (const std::runtime_error &) { // between two owners
            return {};
        }
    }

    VeskServer server;
    Screen screen;
    FieldReader reader;

private:
    inline static std::unique_ptr<ShippedApplication> theApplication;
    const qsizetype m_logBefore = ShippedApplication::log().size();
};

} // namespace vesk::test
