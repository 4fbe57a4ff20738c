#include "Platform/Linux/Accessibility/DesktopEntries.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace vesk {

using namespace Qt::StringLiterals;

TEST(DesktopEntries, aWindowFindsItsProgramByWhatItSaysOfItself)
{
    const QTemporaryDir folder;
    const auto write = [&folder](const char *name, const QByteArray &lines) {
        const QString path = folder.filePath(QLatin1String(name));
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[Desktop Entry]\nType=Application\n" + lines);
    };
    write("own/org.example.Editor.desktop", "Name=My editor\nExec=/usr/bin/editor %U\n");
    write("all/org.example.Editor.desktop", "Name=Hidden by the person's own\nExec=editor\n");
    write("all/editor-settings.desktop", "Name=Settings\nExec=editor --settings\nNoDisplay=true\n");
    write("all/sub/mail.desktop",
          "# comment\nName=Mail\nName[de]=Post\nName[de_CH]=Poscht\nStartupWMClass=MailWindow\nExec=env A=b "
          "mail\n"
          "[Desktop Action new]\nName=Not this\n");
    write("all/gone.desktop", "Name=Gone\nHidden=true\nStartupWMClass=gone\n");
    write("all/script.desktop", "Name=Script\nExec=python3.11 script.py\n");
    write("all/broken.desktop", "no equals sign\n=\n");

    const QStringList folders = {folder.filePath(u"own"_s), folder.filePath(u"all"_s), u"nowhere"_s};
    const struct {
        QString applicationId, instance, className, executable, locale, id, name;
    } rows[] = {
        {u"org.example.Editor"_s, {}, {}, {}, {}, u"org.example.Editor"_s, u"My editor"_s},
        {{}, u"editor"_s, u"Editor"_s, {}, {}, u"org.example.Editor"_s, u"My editor"_s},
        {{}, u"x"_s, u"x"_s, u"editor"_s, {}, u"org.example.Editor"_s, u"My editor"_s},
        {{}, {}, u"mailwindow"_s, {}, u"de_CH"_s, u"sub-mail"_s, u"Poscht"_s},
        {{}, {}, u"MailWindow"_s, {}, u"de_DE"_s, u"sub-mail"_s, u"Post"_s},
        {{}, {}, u"MailWindow"_s, {}, u"C"_s, u"sub-mail"_s, u"Mail"_s},
        {{}, u"gone"_s, u"gone"_s, {}, {}, {}, {}},
        {{}, u"x"_s, u"x"_s, u"python3.11"_s, {}, {}, {}},
        {{}, {}, {}, {}, {}, {}, {}},
    };
    for (const auto &row : rows) {
        const DesktopEntries entries = DesktopEntries::read(folders, row.locale);
        WindowDescription window;
        window.applicationId = row.applicationId;
        window.instance = row.instance;
        window.className = row.className;
        const DesktopEntry *found = entries.find(window, row.executable);
        SCOPED_TRACE(row.className.toStdString() + row.applicationId.toStdString()
                     + row.executable.toStdString());
        ASSERT_EQ(found != nullptr, !row.id.isEmpty());
        if (found != nullptr) {
            EXPECT_EQ(found->id, row.id);
            EXPECT_EQ(found->name, row.name);
        }
    }
}

} // namespace vesk
