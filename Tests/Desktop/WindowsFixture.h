#pragma once

#include "Desktop/ControlUser.h"
#include "Desktop/Screen.h"
#include "Support/VeskServer.h"

#include <gtest/gtest.h>
#include <memory>

namespace vesk::test {

/// Vesk's windows in a process of their own, used by somebody who sees only the accessibility bus.
class WindowsFixture : public testing::Test {
protected:
    static constexpr int Return = 36;
    static constexpr int Home = 110;
    static constexpr int Down = 116;

    WindowsFixture();

    /// Starts the program on a page.
    void open(const QString &page);

    /// Brings the main window to the front, where keys reach it.
    void toFront();

    void tell(const QString &command);

    /// What the next program that pastes would get.
    QString clipboard();

    /// Opens the list of a choice and takes the entry with this number by the keyboard.
    void choose(const QString &name, const QString &entry, int number);

    VeskServer server;
    Screen screen;
    std::unique_ptr<Process> peer;
    std::unique_ptr<ControlUser> user;
};

/// Writes dictations into the history's file, the last one newest; each was heard as "um" and its text.
void writeHistory(const QStringList &texts);

} // namespace vesk::test
