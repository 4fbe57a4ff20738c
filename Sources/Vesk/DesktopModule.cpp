// The application on this desktop: the composition root of the module that is loaded when the program is
// started without arguments.

#include "App/AppDelegate.h"
#include "App/DictationWindows.h"
#include "App/Glyph.h"
#include "Dictation/HistoryStore.h"
#include "Foundation/Config.h"
#include "Foundation/Descriptor.h"
#include "Foundation/Log.h"
#include "Platform/ApplicationModule.h"
#include "Platform/Linux/Desktop/BusInstance.h"
#include "Platform/Linux/Desktop/LinuxDesktop.h"
#include "Platform/Linux/Desktop/LinuxTrayHost.h"
#include "Platform/Linux/Desktop/QuitSignals.h"
#include "Platform/Linux/Desktop/X11Compositing.h"
#include "Platform/Linux/Host/LinuxHost.h"
#include "Platform/Linux/Host/LinuxLoginItem.h"
#include "Platform/Linux/Host/LinuxPrograms.h"
#include "Platform/ModuleLoader.h"
#include "Platform/Qt/SystemClock.h"
#include "Server/AccountStore.h"
#include "Server/ServerConnection.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>

#include <cstdlib>
#include <unistd.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// Everything the application is made of, in the order in which it may be taken apart again.
class Application {
public:
    Application()
        : m_speech(loadSpeechModule(m_folders,
                                    {m_folders.data + u"/speech/models", Config::directory() + u"/Models"}))
        , m_windows({m_history, m_account, m_desktop, m_loginItem, m_clock, m_speech->speechModels(),
                     m_trayHost, m_programs, LinuxHost::executable()})
        , m_delegate({m_clock, *m_speech, m_desktop, m_server, m_history, m_account, m_windows, m_trayHost,
                      m_compositing, [] { QApplication::quit(); }})
    {
    }

    AppDelegate &delegate() { return m_delegate; }

private:
    InstalledFolders m_folders = InstalledFolders::ofThisProgram();
    LinuxHost m_host;
    LinuxPrograms m_programs;
    LinuxLoginItem m_loginItem{LinuxHost::executable()};
    SystemClock m_clock;
    LinuxDesktop m_desktop{m_clock};
    LinuxTrayHost m_trayHost{m_clock};
    X11Compositing m_compositing;
    std::unique_ptr<SpeechModule> m_speech;
    ServerConnection m_server{m_host};
    HistoryStore m_history;
    AccountStore m_account{m_server, m_clock};
    DictationWindows m_windows;
    AppDelegate m_delegate;
};

/// The person started a program with windows; the sentence has to be seen where no terminal is.
int refuse(const QString &sentence)
{
    writeAll(STDERR_FILENO, QString(u"error: " + sentence + u'\n').toUtf8());
    QMessageBox::critical(nullptr, u"Vesk"_s, sentence);
    return EXIT_FAILURE;
}

int run()
{
    // On Linux nothing else makes it, and the log itself never does.
    QDir().mkpath(QFileInfo(Log::file()).path());
    AppDelegate *delegate = nullptr;
    BusInstance instance;
    const auto activated = [&delegate] {
        if (delegate != nullptr) {
            delegate->applicationShouldHandleReopen();
        }
    };
    switch (instance.claim(activated)) {
    case SingleInstance::Claim::first:
    case SingleInstance::Claim::unknown: break;
    case SingleInstance::Claim::second: return EXIT_SUCCESS;
    case SingleInstance::Claim::stuck:
        return refuse(u"Vesk is running already, but it does not answer. End it and start it again."_s);
    }
    const bool isFirstLaunch =
        !QFileInfo::exists(Config::file()); // whoever reads the settings makes the file
    try {
        Application application;
        delegate = &application.delegate();
        const QuitSignals signals([] { QApplication::quit(); });
        const auto didFinishLaunching = [delegate, isFirstLaunch] {
            delegate->applicationDidFinishLaunching(isFirstLaunch);
        };
        QMetaObject::invokeMethod(qApp, didFinishLaunching, Qt::QueuedConnection);
        const int status = QApplication::exec();
        delegate->applicationWillTerminate();
        // A decode that nobody waits for any more cannot be interrupted, and unloading the recogniser's
        // library below it crashes. Everything that must be on disk is there.
        std::_Exit(status);
    } catch (const ModuleError &error) {
        return refuse(error.errorDescription());
    }
}

} // namespace

class DesktopModule final : public QObject, public ApplicationModuleFactory {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID VESK_APPLICATION_MODULE_IID)
    Q_INTERFACES(vesk::ApplicationModuleFactory)

public:
    int runApplication(int &argumentCount, char **arguments) override
    {
        const QApplication application(argumentCount, arguments);
        QApplication::setApplicationName(u"Vesk"_s);
        QApplication::setApplicationDisplayName(u"Vesk"_s);
        QApplication::setDesktopFileName(u"example.vesk.Vesk"_s);
        QApplication::setWindowIcon(Glyph::applicationIcon());
        QApplication::setQuitOnLastWindowClosed(false);
        return run();
    }
};

} // namespace vesk

#include "DesktopModule.moc"
