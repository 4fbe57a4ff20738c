// How soon the windows stand, and how long a frame takes while a history of a thousand entries is scrolled
// and searched: vesk_window_frames, with the platform of the environment (xvfb-run, or
// QT_QPA_PLATFORM=offscreen). Prints milliseconds: the median and the longest.

#include "Support/ManualClock.h"
#include "Support/WindowsRig.h"
#include "Windows/MainWindow.h"
#include "Windows/SetupWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QWindow>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

using namespace vesk;

void print(const char *what, std::vector<double> times)
{
    std::ranges::sort(times);
    std::printf("%-28s median %6.1f ms   longest %6.1f ms   of %zu\n", what, times[times.size() / 2],
                times.back(), times.size());
}

/// The time of a step with everything that it leaves to be drawn.
double timed(const std::function<void()> &step)
{
    QElapsedTimer timer;
    timer.start();
    step();
    QApplication::processEvents();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void fill(HistoryStore &history)
{
    const QString words =
        QStringLiteral("the meeting with Mrs Okonkwo is moved from Thursday to Friday at ten ");
    for (int i = 0; i < HistoryStore::Limit; ++i) {
        Dictation entry;
        entry.date = QDateTime::currentDateTimeUtc().addSecs(-600 * (HistoryStore::Limit - i));
        entry.kind = QStringLiteral("dictation");
        entry.appName = QStringLiteral("Editor");
        entry.text = QString(QString::number(i) + u' ' + words.repeated(1 + i % 5));
        entry.raw = entry.text.toLower();
        history.append(entry);
    }
}

/// From the constructor to the first frame.
template <typename Make>
void measureOpening(const char *what, Make make)
{
    std::vector<double> times;
    for (int i = 0; i < 10; ++i) {
        decltype(make()) window; // its end is not measured
        times.push_back(timed([&] {
            window = make();
            window->show();
            while (!window->isVisible() || !window->windowHandle()->isExposed()) {
                QApplication::processEvents();
            }
            window->repaint();
        }));
    }
    print(what, std::move(times));
}

void measureHistory(MainWindow &window, HistoryStore &history)
{
    window.present(Page::history);
    QApplication::processEvents();
    auto *list = window.findChild<QListView *>(QStringLiteral("history"));
    QScrollBar *bar = list->verticalScrollBar();
    std::vector<double> scrolling;
    for (int place = 0; place < bar->maximum(); place += bar->maximum() / 200) {
        scrolling.push_back(timed([&] {
            bar->setValue(place);
            list->viewport()->repaint();
        }));
    }
    print("history, scrolled", std::move(scrolling));
    QLineEdit *search = list->parentWidget()->parentWidget()->findChild<QLineEdit *>();
    std::vector<double> searching;
    for (const QString &text : {QStringLiteral("mrs okonkwo friday"), QStringLiteral("nothing like it")}) {
        for (qsizetype length = 0; length <= text.size(); ++length) {
            searching.push_back(timed([&] {
                search->setText(text.left(length));
                list->viewport()->repaint();
            }));
        }
    }
    print("history, a letter searched", std::move(searching));
    std::vector<double> growing;
    for (int i = 0; i < 50; ++i) {
        Dictation entry;
        entry.date = QDateTime::currentDateTimeUtc();
        entry.text = entry.raw = QStringLiteral("one more");
        growing.push_back(timed([&] { history.append(entry); }));
    }
    print("history, one more at the cap", std::move(growing));
}

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    QApplication application(argc, argv);
    ManualClock clock;
    test::WindowsRig rig(clock);
    fill(rig.history);
    SetupModel setup(rig.services());
    measureOpening("main window, open to drawn",
                   [&] { return std::make_unique<MainWindow>(rig.services(), setup); });
    measureOpening("set-up, open to drawn",
                   [&] { return std::make_unique<SetupWindow>(rig.services(), setup); });
    MainWindow window(rig.services(), setup);
    measureHistory(window, rig.history);
    return 0;
}
