// Vesk's windows with a desktop of fakes and the real files of the home folder, for a test in another process
// and for pictures: vesk_windows_peer [--pictures FOLDER] [--dark] [--mirrored]
// Reads commands from standard input, one a line, and answers each with "ok": "page settings", "account",
// "setup", "missing", "there", "unseen" for a keyboard without the fn key, "down rightOption", "up
// rightOption", "clipboard", "quit".

#include "Platform/Linux/Host/LinuxLoginItem.h"
#include "Platform/Qt/SystemClock.h"
#include "Support/WindowsRig.h"
#include "Windows/MainWindow.h"
#include "Windows/SetupWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QListWidget>
#include <QScrollArea>
#include <QScrollBar>
#include <QSocketNotifier>
#include <QStyleFactory>

#include <cstdio>
#include <iostream>

namespace {

using namespace vesk;
using namespace Qt::StringLiterals;

void lackThings(test::WindowsRig &rig, bool isMissing)
{
    const auto state = [isMissing](const char *reason) {
        return isMissing ? Availability::unavailable(QString::fromUtf8(reason)) : Availability::available();
    };
    rig.desktop.recording = state("Microphone access was refused");
    rig.desktop.programs.available =
        state("Vesk cannot see the field you are typing in, because this session has no accessibility bus.");
    rig.tray = state("This desktop shows no icons of programs; start Vesk again to see its window.");
    rig.areNotificationsOff = isMissing;
    rig.desktop.keys.altGr = isMissing ? virtualKeyCode(HotkeyKey::rightOption) : -1;
}

QPalette darkPalette()
{
    QPalette dark(QColor(0x35, 0x35, 0x35), QColor(0x2b, 0x2b, 0x2b));
    dark.setColor(QPalette::Base, QColor(0x23, 0x23, 0x23));
    dark.setColor(QPalette::Highlight, QColor(0x2a, 0x82, 0xda));
    dark.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0x9a));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        dark.setColor(role, QColor(0xee, 0xee, 0xee));
        dark.setColor(QPalette::Disabled, role, QColor(0x7f, 0x7f, 0x7f));
    }
    return dark;
}

class Peer final {
public:
    Peer()
        : m_rig(m_clock, test::FakeSound::Source::tones)
        , m_login(QCoreApplication::applicationFilePath())
        , m_services(services())
        , m_model(m_services)
        , m_main(m_services, m_model)
        , m_setup(m_services, m_model)
    {
        m_rig.desktop.sound.sound(u"microphone in the lid"_s, 440);
        QObject::connect(&m_main, &MainWindow::setupWanted, &m_setup, &SetupWindow::present);
        QObject::connect(&m_setup, &SetupWindow::signInWanted, &m_main, &MainWindow::presentAccount);
        QObject::connect(&m_setup, &SetupWindow::settingsWanted, &m_main,
                         [this] { m_main.present(Page::settings); });
    }

    void obey(const QString &command)
    {
        const QStringList pages = {u"home"_s, u"notes"_s, u"history"_s, u"dictionary"_s, u"settings"_s};
        const QString word = command.section(u' ', 0, 0);
        if (word == u"page") {
            m_main.present(static_cast<Page>(pages.indexOf(command.section(u' ', 1))));
        } else if (word == u"account") {
            m_main.presentAccount();
        } else if (word == u"setup") {
            m_setup.present();
        } else if (word == u"missing" || word == u"there") {
            lackThings(m_rig, word == u"missing");
        } else if (word == u"unseen") {
            m_rig.desktop.keys.unseenKey = virtualKeyCode(HotkeyKey::fn);
        } else if (word == u"down" || word == u"up") {
            hold(hotkeyKey(command.section(u' ', 1)).value(), word == u"down");
        } else if (word == u"clipboard") {
            std::printf("%s\n", m_rig.desktop.board.text().toUtf8().toPercentEncoding().constData());
        } else {
            QApplication::quit();
        }
        std::printf("ok\n");
        std::fflush(stdout);
    }

    void takePictures(const QString &folder, const QString &suffix)
    {
        QDir().mkpath(folder);
        const auto save = [&](QWidget &window, const QString &name) {
            for (int i = 0; i < 40; ++i) { // until the layouts and the meter have settled
                QApplication::processEvents(QEventLoop::AllEvents, 10);
            }
            window.grab().save(folder + u"/windows-" + name + suffix + u".png");
        };
        for (const auto &[page, name] :
             {std::pair(Page::home, u"home"_s), std::pair(Page::history, u"history"_s),
              std::pair(Page::dictionary, u"dictionary"_s), std::pair(Page::settings, u"settings"_s)}) {
            m_main.present(page);
            if (page == Page::history) {
                m_main.findChild<QListView *>(u"history"_s)
                    ->setCurrentIndex(m_main.findChild<QListView *>(u"history"_s)->model()->index(1, 0));
            }
            save(m_main, name);
        }
        m_main.presentAccount();
        save(m_main, u"account"_s);
        m_setup.present();
        save(m_setup, u"setup"_s);
    }

    test::WindowsRig &rig() { return m_rig; }

private:
    /// The session's own list of what starts with it, which a test looks into.
    WindowServices services()
    {
        const WindowServices rig = m_rig.services();
        return {rig.settings, rig.history, rig.account,     rig.mcpSetup, rig.desktop,
                m_login,      rig.clock,   rig.speechModel, rig.tray,     rig.notificationsOff};
    }

    void hold(HotkeyKey key, bool isDown)
    {
        m_rig.desktop.keys.flagsChanged(virtualKeyCode(key), isDown ? modifierFlag(key) : 0);
    }

    SystemClock m_clock;
    test::WindowsRig m_rig;
    LinuxLoginItem m_login;
    WindowServices m_services;
    SetupModel m_model;
    MainWindow m_main;
    SetupWindow m_setup;
};

} // namespace

int main(int argc, char **argv)
{
    // Where a GTK theme is installed, file dialogs would be GTK's.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser parser;
    parser.addOptions({{u"pictures"_s, u"Save one of every page and end."_s, u"folder"_s},
                       {u"suffix"_s, u"For the pictures' names."_s, u"text"_s},
                       {u"missing"_s, u"Some services are missing."_s},
                       {u"dark"_s, u"In dark colours."_s},
                       {u"mirrored"_s, u"From right to left."_s}});
    parser.process(application);
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    if (parser.isSet(u"dark"_s)) {
        QApplication::setPalette(darkPalette());
    }
    if (parser.isSet(u"mirrored"_s)) {
        QApplication::setLayoutDirection(Qt::RightToLeft);
    }
    Peer peer;
    lackThings(peer.rig(), parser.isSet(u"missing"_s));
    if (parser.isSet(u"pictures"_s)) {
        peer.takePictures(parser.value(u"pictures"_s), parser.value(u"suffix"_s));
        return 0;
    }
    QSocketNotifier commands(0, QSocketNotifier::Read);
    QObject::connect(&commands, &QSocketNotifier::activated, [&peer] {
        std::string line;
        peer.obey(std::getline(std::cin, line) ? QString::fromStdString(line) : u"quit"_s);
    });
    std::printf("ready\n");
    std::fflush(stdout);
    return QApplication::exec();
}
