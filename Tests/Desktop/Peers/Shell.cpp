// What a person sees of Vesk apart from its windows, moved by lines on standard input: the indicator and the
// status item on this desktop. Prints what the menu's items do. One word a line is a command, its argument
// follows:
//   listening locked command | level 0.5 | text … | spin … | flash … | hide | indicator listening
//   state access | error … | last | retry | clear
//   ground #f2f2f0     (a window of that colour below all of it)

#include "App/Glyph.h"
#include "App/HUD.h"
#include "App/StatusItem.h"
#include "Platform/Linux/Desktop/LinuxTrayHost.h"
#include "Platform/Linux/Desktop/X11Compositing.h"
#include "Platform/Qt/SystemClock.h"

#include <QApplication>
#include <QScreen>
#include <QSocketNotifier>
#include <QWidget>

#include <cstdio>
#include <unistd.h>

using namespace vesk;

namespace {

void say(const char *what)
{
    std::puts(what);
    std::fflush(stdout);
}

class Owner final : public StatusMenu::Owner {
public:
    StatusMenu::State state;

    StatusMenu::State menuNeedsUpdate() override { return state; }
    void openSetup() override { say("openSetup"); }
    void openMain() override { say("openMain"); }
    void copyLastText() override { say("copyLastText"); }
    void retryLast() override { say("retryLast"); }
    void openSettings() override { say("openSettings"); }
    void quit() override { say("quit"); }
};

class Shell {
public:
    void obey(const QString &line)
    {
        const QString word = line.section(u' ', 0, 0);
        const QString rest = line.section(u' ', 1);
        if (word == u"ground") {
            m_ground.setPalette(QPalette(QColor(rest)));
            m_ground.setWindowFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnBottomHint);
            // Not all of the screen: window managers would put it above panels.
            m_ground.setGeometry(QGuiApplication::primaryScreen()->geometry().adjusted(0, 0, 0, -1));
            m_ground.show();
        } else if (word == u"state") {
            change(rest.section(u' ', 0, 0), rest.section(u' ', 1));
        } else if (word == u"indicator") {
            m_item.setIndicator(rest == u"listening"     ? StatusItem::Indicator::listening
                                    : rest == u"working" ? StatusItem::Indicator::working
                                                         : StatusItem::Indicator::idle);
        } else {
            show(word, rest);
        }
        say("done");
    }

private:
    void show(const QString &word, const QString &rest)
    {
        if (word == u"listening") {
            m_hud.showListening(rest.contains(u"locked"), rest.contains(u"command"));
        } else if (word == u"level") {
            m_hud.setLevel(rest.toFloat());
        } else if (word == u"text" || word == u"spin") {
            m_hud.showText(rest, word == u"spin");
        } else if (word == u"flash") {
            m_hud.flash(rest, std::chrono::milliseconds(50));
        } else {
            m_hud.hide();
        }
    }

    void change(const QString &what, const QString &text)
    {
        StatusMenu::State &state = m_owner.state;
        if (what == u"access") {
            state.needsAccess = true;
        } else if (what == u"error") {
            state.configError = text;
        } else if (what == u"last") {
            state.hasLastText = true;
        } else if (what == u"retry") {
            state.canRetry = true;
        } else {
            state = {};
        }
    }

    QWidget m_ground;
    SystemClock m_clock;
    X11Compositing m_compositing;
    HUD m_hud{m_clock, m_compositing};
    LinuxTrayHost m_host{m_clock};
    Owner m_owner;
    StatusItem m_item{m_host, m_owner};
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setApplicationName(QStringLiteral("Vesk"));
    QApplication::setWindowIcon(Glyph::applicationIcon());
    Shell shell;
    QByteArray input;
    QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
        char bytes[4096];
        const auto count = read(STDIN_FILENO, bytes, sizeof bytes);
        if (count <= 0) {
            QApplication::quit();
            return;
        }
        input.append(bytes, count);
        for (auto end = input.indexOf('\n'); end >= 0; end = input.indexOf('\n')) {
            shell.obey(QString::fromUtf8(input.left(end)));
            input.remove(0, end + 1);
        }
    });
    say("ready");
    return QApplication::exec();
}
