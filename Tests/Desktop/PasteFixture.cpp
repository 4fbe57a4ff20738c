#include "Desktop/PasteFixture.h"

#include "Desktop/PrivateDesktop.h"
#include "Support/Await.h"

#include <QFile>
#include <QRandomGenerator>
#include <QUuid>

namespace vesk::test {

namespace {

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        throw std::runtime_error("no file " + path.toStdString());
    }
}

std::unique_ptr<Peer> startChromium(Screen &screen, const QString &title, const QString &folder)
{
    const QString page = folder + QStringLiteral("/page.html");
    writeFile(page,
              QStringLiteral("<meta charset=utf-8><title>%1</title><textarea id=t rows=8 cols=60></textarea>"
                             "<script>t.focus()</script>")
                  .arg(title)
                  .toUtf8());
    const QStringList arguments = {QStringLiteral("--no-sandbox"),
                                   QStringLiteral("--force-renderer-accessibility"),
                                   QStringLiteral("--no-first-run"),
                                   QStringLiteral("--disable-background-networking"),
                                   QStringLiteral("--disable-component-update"),
                                   QStringLiteral("--disable-sync"),
                                   QStringLiteral("--disable-gpu"),
                                   QStringLiteral("--password-store=basic"),
                                   QStringLiteral("--disable-search-engine-choice-screen"),
                                   QStringLiteral("--host-resolver-rules=MAP * ~NOTFOUND"),
                                   QStringLiteral("--user-data-dir=") + folder + QStringLiteral("/chromium"),
                                   QStringLiteral("file://") + page};
    return std::make_unique<Peer>(screen, QStringLiteral("chromium"), arguments, title);
}

/// A terminal shows its text to no assistive program: what is typed into it goes to a file.
Target startTerminal(Screen &screen, const QString &title, const QString &folder)
{
    const QString received = folder + u'/' + title;
    const QStringList arguments = {
        QStringLiteral("-u8"), QStringLiteral("-T"), title, QStringLiteral("-e"),
        QStringLiteral("stty -icanon -echo; touch '%1'; exec cat > '%1'").arg(received)};
    Target target;
    target.peer = std::make_unique<Peer>(screen, QStringLiteral("xterm"), arguments, title);
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

} // namespace

ClipboardOwner::ClipboardOwner(const Contents &contents, const QString &selection)
{
    QStringList arguments = {QStringLiteral(VESK_TEST_PEERS "/clipboard_owner.py"), selection};
    for (auto entry = contents.cbegin(); entry != contents.cend(); ++entry) {
        const QString path = m_folder.filePath(QString::number(arguments.size()));
        writeFile(path, entry.value());
        arguments.append(QString(entry.key() + u'=' + path));
    }
    m_process = std::make_unique<Process>(QStringLiteral("/usr/bin/python3"),
                                          Process::Options{arguments, QProcess::SeparateChannels, {}, {}});
    if (m_process->readLine() != "ready") {
        throw std::runtime_error("the clipboard owner does not own the clipboard");
    }
}

ClipboardOwner::Contents ClipboardOwner::everything()
{
    QByteArray image(3'800'000, '\0');
    QRandomGenerator random(4); // the same bytes every time, and no two stretches alike
    for (char &byte : image) {
        byte = static_cast<char>(random.generate());
    }
    const QByteArray text = QStringLiteral("vorher: täxt 😀\n").toUtf8();
    return {{QStringLiteral("UTF8_STRING"), text},
            {QStringLiteral("text/plain;charset=utf-8"), text},
            {QStringLiteral("text/html"), "<b>previous</b>"},
            {QStringLiteral("image/png"), image},
            {QStringLiteral("application/x-vesk-test"), QByteArray("\0\1\2custom\xff", 10)}};
}

QByteArray onClipboard(const QString &type, const QString &selection)
{
    QProcess xclip;
    xclip.start(QStringLiteral("xclip"),
                {QStringLiteral("-o"), QStringLiteral("-selection"), selection, QStringLiteral("-t"), type});
    // The event loop has to run meanwhile: what is asked for may be ours.
    if (!eventually([&xclip] { return xclip.state() == QProcess::NotRunning; })) {
        throw std::runtime_error("xclip does not end");
    }
    return xclip.readAllStandardOutput();
}

void copyInAnotherProgram(const QByteArray &text)
{
    QTemporaryDir folder;
    writeFile(folder.filePath(QStringLiteral("text")), text);
    // It goes on in the background, where it must hold none of our pipes.
    run(QStringLiteral("sh"),
        {QStringLiteral("-c"), QStringLiteral("xclip -i -selection clipboard \"$0\" >/dev/null 2>&1"),
         folder.filePath(QStringLiteral("text"))});
}

Target startTarget(Screen &screen, FieldReader &reader, const QString &program)
{
    const QString title = QUuid::createUuid().toString(QUuid::Id128);
    const QString folder = PrivateDesktop::current().folder(QStringLiteral("home"));
    if (program == QStringLiteral("xterm")) {
        return startTerminal(screen, title, folder);
    }
    Target target;
    if (program == QStringLiteral("mousepad")) {
        target.peer = startMousepad(screen);
    } else if (program == QStringLiteral("gtk4")) {
        target.peer = std::make_unique<Peer>(
            screen, QStringLiteral("/usr/bin/python3"),
            QStringList{QStringLiteral(VESK_TEST_PEERS "/gtk4_field.py"), title}, title);
    } else if (program == QStringLiteral("qt6")) {
        target.peer =
            std::make_unique<Peer>(screen, QStringLiteral(VESK_TEST_QT_FIELD), QStringList{title}, title);
    } else {
        target.peer = startChromium(screen, title, folder);
    }
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

PasteFixture::~PasteFixture() = default;

void PasteFixture::paste(const QString &text)
{
    awaited(Inserter::paste(loan, keys, text));
    m_countAfterPaste = pasteboard.changeCount(PasteboardName::general);
}

bool PasteFixture::waitUntilGivenBack()
{
    return eventually([this] { return pasteboard.changeCount(PasteboardName::general) > m_countAfterPaste; },
                      std::chrono::seconds(20));
}

} // namespace vesk::test
