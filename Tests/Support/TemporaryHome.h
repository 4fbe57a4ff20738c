#pragma once

#include <QString>

#include <gtest/gtest.h>

namespace vesk {

/// The home folder of this test program (see TestMain.cpp).
QString testHome();

/// Deletes everything in it, so that a case starts as on a new machine.
void emptyTestHome();

/// The permission bits of a file, as chmod takes them; -1 when there is none.
int modeOf(const QString &path);

/// All that the log holds so far; nothing without one.
QByteArray logText();

/// Runs a program that others wrote to its end; fails the test when it is missing or refuses.
void runTool(const QString &program, const QStringList &arguments);

/// As long as it lives, no file can be written beyond so many bytes: a full disk, without a disk to fill.
class FullDisk {
public:
    explicit FullDisk(unsigned long bytes);
    ~FullDisk();
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    unsigned long m_before;
};

/// Begins with an empty home.
class HomeTest : public testing::Test {
protected:
    HomeTest() { emptyTestHome(); }

    /// The path of a file in it.
    static QString at(QStringView name) { return testHome() + u'/' + name; }
};

} // namespace vesk
