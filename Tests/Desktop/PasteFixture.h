#pragma once

#include "Desktop/FieldReader.h"
#include "Desktop/Peer.h"
#include "Dictation/Inserter.h"
#include "Dictation/PasteboardLoan.h"
#include "Platform/Linux/Keys/InjectedKeys.h"
#include "Platform/Linux/Keys/XTestKeyPoster.h"
#include "Platform/Linux/Pasteboard/X11Pasteboard.h"
#include "Platform/Qt/SystemClock.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace vesk::test {

/// What a person has on their clipboard, and the program it was copied in.
class ClipboardOwner {
public:
    using Contents = QMap<QString, QByteArray>; ///< bytes by type

    explicit ClipboardOwner(const Contents &contents, const QString &selection = QStringLiteral("CLIPBOARD"));

    Process &process() { return *m_process; }

    /// Text, marked-up text, an image too large for one answer of the server, and a type that nobody knows.
    static Contents everything();

private:
    QTemporaryDir m_folder;
    std::unique_ptr<Process> m_process;
};

/// What the selection offers under a type, asked for by a program of others. Empty when it offers nothing.
QByteArray onClipboard(const QString &type, const QString &selection = QStringLiteral("clipboard"));

/// The person copies this text in another program.
void copyInAnotherProgram(const QByteArray &text);

/// A program with a field in front of everything else, and how its text is read without this program's help.
struct Target {
    std::unique_ptr<Peer> peer;
    /// The text once it contains this; the last text when it never does.
    std::function<QString(const QString &)> textWith;
};

Target startTarget(Screen &screen, FieldReader &reader, const QString &program);

/// Everything that pastes, for real.
class PasteFixture : public testing::Test {
protected:
    ~PasteFixture() override;

    void paste(const QString &text);

    /// Until the person's things are back; true when they are.
    bool waitUntilGivenBack();

    Screen screen;
    FieldReader reader;
    SystemClock clock;
    InjectedKeys injected;
    X11Pasteboard pasteboard{QStringLiteral(VESK_TEST_KEEPER)};
    XTestKeyPoster keys{injected, clock};
    PasteboardLoan loan{pasteboard, clock};

private:
    qint64 m_countAfterPaste = 0;
};

} // namespace vesk::test
