#pragma once

#include "Desktop/FieldReader.h"
#include "Desktop/Peer.h"
#include "Desktop/ShippedApplication.h"
#include "Foundation/Config.h"
#include "Server/AccountFile.h"
#include "Support/Await.h"
#include "Support/VeskServer.h"

#include <gtest/gtest.h>

namespace vesk::test {

/// A person at the private desktop, in front of the application as it is installed. One application for all
/// cases of a suite, because its model loads slowly under the sanitizers; it reads its settings and its
/// sign-in at every press.
class ApplicationTest : public testing::Test {
protected:
    static constexpr int CommandKey = 105; ///< right Control

    ApplicationTest();

    static ShippedApplication &application();
    static void TearDownTestSuite();

    /// Writes the settings, with the loopback server's address, and the sign-in.
    void configure(Config config, bool isSignedIn);

    /// Two and a half seconds of a person's voice; what is understood begins with "Ever tried".
    static QString briefly();

    /// Holds a key while the brief clip is said.
    void speak(int key = ShippedApplication::DictationKey);

    /// Whether the log gets such a line after what it held when the case began.
    bool isLogged(const QByteArray &text);

    QString textOf(const Peer &peer, const std::function<bool(const QString &)> &condition);

    /// A whole answer of an operation, after a delay.
    void answer(const QByteArray &operation, int status, const QByteArray &body,
                std::chrono::milliseconds delay = {});

    /// Selects everything in the focused field.
    void selectAll();

    /// Whether the secret stands in a file of the home or temporary folder, or in anything that the server
    /// was sent.
    QStringList placesOf(const QString &secret) const;

    /// Settings for the road over the server.
    static Config byUpload();

    /// A program that the person copies from; it runs until somebody else copies.
    static std::unique_ptr<Process> copy(const QByteArray &text);
    /// What another program would paste.
    static QByteArray clipboard();

    VeskServer server;
    Screen screen;
    FieldReader reader;

private:
    static std::unique_ptr<ShippedApplication> theApplication;
    qsizetype m_logBefore = 0;
};

} // namespace vesk::test
