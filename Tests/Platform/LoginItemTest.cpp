#include "Foundation/Files.h"
#include "Platform/Linux/Host/LinuxLoginItem.h"
#include "Support/Await.h"
#include "Support/TemporaryHome.h"

#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

TEST(LoginItem, whatItWritesStartsTheProgramWhateverItsPathHolds)
{
    for (const QString &folder : {u"plain"_s, u"with blank"_s, u"a\"b`c$d\\e"_s}) {
        emptyTestHome();
        const QString program = testHome() + u'/' + folder + u"/vesk";
        Files::makeFolder(testHome() + u'/' + folder);
        Files::replace(program, "#!/bin/sh\ntouch \"$HOME/started\"\n");
        LinuxLoginItem item(program);
        EXPECT_FALSE(item.availability().isAvailable()) << "no program yet";
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        ASSERT_TRUE(item.availability().isAvailable());
        EXPECT_FALSE(item.isEnabled());

        item.setEnabled(true);

        EXPECT_TRUE(item.isEnabled());
        // GLib reads and starts the entry as a desktop does.
        EXPECT_EQ(QProcess::execute(u"gio"_s, {u"launch"_s, LinuxLoginItem::file()}), 0);
        EXPECT_TRUE(eventually([] { return QFile::exists(testHome() + u"/started"); }))
            << folder.toStdString();
        item.setEnabled(false);
        item.setEnabled(false); // off stays off
        EXPECT_FALSE(QFile::exists(LinuxLoginItem::file()));
    }
}

TEST(LoginItem, anEntryThatTheDesktopSwitchedOffIsOff)
{
    emptyTestHome();
    LinuxLoginItem item(u"/bin/true"_s);
    for (const QByteArray line : {"Hidden=true", "X-GNOME-Autostart-enabled=false"}) {
        item.setEnabled(true);
        Files::replace(LinuxLoginItem::file(), QByteArray("[Desktop Entry]\nExec=/bin/true\n" + line + '\n'));
        EXPECT_FALSE(item.isEnabled()) << line.constData();
        item.setEnabled(true);
        EXPECT_TRUE(item.isEnabled());
    }
}

} // namespace vesk
