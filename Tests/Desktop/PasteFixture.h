#pragma once

#include "Desktop/FieldPrograms.h"
#include "Desktop/FieldReader.h"
#include "Dictation/Inserter.h"
#include "Dictation/PasteboardLoan.h"
#include "Platform/Linux/Keys/InjectedKeys.h"
#include "Platform/Linux/Keys/XTestKeyPoster.h"
#include "Platform/Linux/Pasteboard/X11Pasteboard.h"
#include "Platform/Qt/SystemClock.h"
#include "Support/Await.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QUuid>

#include <gtest/gtest.h>

namespace vesk::test {

using namespace Qt::StringLiterals;

inline QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        throw std::runtime_error("no file " + path.toStdString());
    }
}

/// What a person has on their clipboard, and the program it was copied in.
class ClipboardOwner {
public:
    using Contents = QMap<QString, QByteArray>; ///< bytes by type

    explicit ClipboardOwner(const Contents &contents, const QString &selection = u"CLIPBOARD"_s)
    {
        QStringList arguments = {QStringLiteral(VESK_TEST_PEERS "/clipboard_owner.py"), selection};
        for (auto entry = contents.cbegin(); entry != contents.cend(); ++entry) {
            const QString path = m_folder.filePath(QString::number(arguments.size()));
            writeFile(path, entry.value());
            arguments.append(QString(entry.key() + u'=' + path));
        }
        m_process = std::make_unique<Process>(u"/usr/bin/python3"_s, arguments);
        if (m_process->readLine() != "ready") {
            throw std::runtime_error("the clipboard owner does not own the clipboard");
        }
    }

    Process &process() { return *m_process; }

    /// Text, marked-up text, an image too large for one answer of the server, and a type that nobody knows.
    static Contents everything()
    {
        QByteArray image(3'800'000, '\0');
        QRandomGenerator random(4); // the same bytes every time, and no two stretches alike
        for (char &byte : image) {
            byte = static_cast<char>(random.generate());
        }
        const QByteArray text = u"vorher: täxt 😀\n"_s.toUtf8();
        return {{u"UTF8_STRING"_s, text},
                {u"text/plain;charset=utf-8"_s, text},
                {u"text/html"_s, "<b>previous</b>"},
                {u"image/png"_s, image},
                {u"application/x-vesk-test"_s, QByteArray("\0\1\2custom\xff", 10)}};
    }

private:
    QTemporaryDir m_folder;
    std::unique_ptr<Process> m_process;
};

/// What the selection offers under a type, asked for by a program of others. Empty when it offers nothing.
inline QByteArray onClipboard(const QString &type, const QString &selection = u"clipboard"_s)
{
    QProcess xclip;
    xclip.start(u"xclip"_s, {u"-o"_s, u"-selection"_s, selection, u"-t"_s, type});
    // The event loop has to run meanwhile: what is asked for may be ours.
    if (!eventually([&xclip] { return xclip.state() == QProcess::NotRunning; })) {
        throw std::runtime_error("xclip does not end");
    }
    return xclip.readAllStandardOutput();
}

/// The person copies this text in another program.
inline void copyInAnotherProgram(const QByteArray &text)
{
    QTemporaryDir folder;
    const QString file = folder.filePath(u"text"_s);
    writeFile(file, text);
    // It goes on in the background, where it must hold none of our pipes.
    run(u"sh"_s, {u"-c"_s, u"xclip -i -selection clipboard \"$0\" >/dev/null 2>&1"_s, file});
}

/// A program with a field in front of everything else, and how its text is read without this program's help.
struct Target {
    std::unique_ptr<Peer> peer;
    /// The text once it contains this; the last text when it never does.
    std::function<QString(const QString &)> textWith;
};

/// A terminal shows its text to no assistive program: what is typed into it goes to a file.
inline Target startTerminal(Screen &screen)
{
    const QString title = QUuid::createUuid().toString(QUuid::Id128);
    const QString received = PrivateDesktop::current().folder(u"home"_s) + u'/' + title;
    const QStringList arguments = {u"-u8"_s, u"-T"_s, title, u"-e"_s,
                                   u"stty -icanon -echo; touch '%1'; exec cat > '%1'"_s.arg(received)};
    Target target;
    target.peer = std::make_unique<Peer>(screen, u"xterm"_s, arguments, title);
    if (!eventually([&received] { return QFile::exists(received); })) {
        throw std::runtime_error("nothing runs in the terminal");
    }
    target.textWith = [received](const QString &text) {
        const auto isThere = [&] { return QString::fromUtf8(contentsOf(received)).contains(text); };
        eventually(isThere, std::chrono::seconds(20));
        return QString::fromUtf8(contentsOf(received));
    };
    return target;
}

inline Target startTarget(Screen &screen, FieldReader &reader, const QString &program)
{
    if (program == u"xterm") {
        return startTerminal(screen);
    }
    Target target;
    target.peer = program == u"mousepad" ? startMousepad(screen)
        : program == u"gtk4"             ? startGtk(screen, 4, u"area"_s, {})
        : program == u"qt6"              ? startQt(screen, u"area"_s, {})
                                         : startChromium(screen, u"area"_s, {});
    const qint64 id = target.peer->process().id();
    // Only what shows its field has the focus in it.
    if (!eventually([&] { return reader.focusedField(id).has_value(); }, std::chrono::minutes(1))) {
        throw std::runtime_error(program.toStdString() + " shows no field");
    }
    target.textWith = [&reader, id](const QString &text) {
        return reader.textWhen(id, [&text](const QString &found) { return found.contains(text); });
    };
    return target;
}

/// Everything that pastes, for real.
class PasteFixture : public testing::Test {
protected:
    void paste(const QString &text)
    {
        awaited(Inserter::paste(loan, keys, text));
        m_countAfterPaste = pasteboard.changeCount(PasteboardName::general);
    }

    /// Until the person's things are back; true when they are.
    bool waitUntilGivenBack()
    {
        return eventually(
            [this] { return pasteboard.changeCount(PasteboardName::general) > m_countAfterPaste; },
            std::chrono::seconds(20));
    }

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
