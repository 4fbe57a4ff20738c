#pragma once

#include "Support/Await.h"
#include "Support/ManualClock.h"
#include "Support/TemporaryHome.h"
#include "Support/WindowsRig.h"
#include "Windows/MainWindow.h"
#include "Windows/SetupWindow.h"

#include <QApplication>

#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace vesk::test {

/// The windows in this process, over fakes and the real files of the home folder.
class ViewsFixture : public testing::Test {
protected:
    /// Made late, so that a case can first say in which state.
    void makeWindows()
    {
        main = std::make_unique<MainWindow>(rig.services(), model);
        setup = std::make_unique<SetupWindow>(rig.services(), model);
    }

    /// Until everything that was asked for is laid out.
    static void settle()
    {
        for (int round = 0; round < 10; ++round) { // a layout may ask for another
            QApplication::sendPostedEvents();
            QApplication::processEvents();
        }
    }

    template <typename Control>
    static Control *named(const QWidget &window, const QString &name)
    {
        for (auto *control : window.findChildren<Control *>()) {
            if (control->accessibleName() == name) {
                return control;
            }
        }
        throw std::runtime_error("no control " + name.toStdString());
    }

    /// Shows every page of the main window in turn, then set-up, each with the name for a failure's message.
    void onEveryPage(const std::function<void(QWidget &window, const QString &page)> &look)
    {
        const std::pair<Page, QString> pages[] = {{Page::home, QStringLiteral("home")},
                                                  {Page::history, QStringLiteral("history")},
                                                  {Page::dictionary, QStringLiteral("dictionary")},
                                                  {Page::settings, QStringLiteral("settings")}};
        for (const auto &[page, name] : pages) {
            main->present(page);
            look(*main, name);
        }
        setup->present();
        look(*setup, QStringLiteral("set-up"));
    }

    /// A button or a check box by what stands on it.
    template <typename Button>
    static Button *labelled(const QWidget &window, const QString &text)
    {
        for (auto *button : window.findChildren<Button *>()) {
            if (button->text().remove(u'&') == text && button->isVisibleTo(&window)) {
                return button;
            }
        }
        throw std::runtime_error("no button " + text.toStdString());
    }

    bool isEmptied = (emptyTestHome(), true);
    ManualClock clock;
    WindowsRig rig{clock};
    SetupModel model{rig.services()};
    std::unique_ptr<MainWindow> main;
    std::unique_ptr<SetupWindow> setup;
};

} // namespace vesk::test
