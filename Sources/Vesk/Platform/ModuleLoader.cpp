#include "Platform/ModuleLoader.h"

#include "Foundation/Log.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QPluginLoader>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// The factory of a module; lives until the process ends.
template <typename Factory>
Factory &load(const InstalledFolders &folders, const QString &name)
{
    QPluginLoader loader(folders.modules + u'/' + name);
    auto *factory = qobject_cast<Factory *>(loader.instance());
    if (factory == nullptr) {
        Log::write(u"module error "_s + loader.errorString());
        throw ModuleError(name);
    }
    return *factory;
}

} // namespace

ModuleError::ModuleError(QString moduleName)
    : m_moduleName(std::move(moduleName))
{
}

QString ModuleError::errorDescription() const
{
    return u"A part of Vesk is missing or damaged (%1). Please install it again."_s.arg(m_moduleName);
}

InstalledFolders InstalledFolders::ofThisProgram()
{
    return ofProgram(QCoreApplication::applicationFilePath());
}

InstalledFolders InstalledFolders::ofProgram(const QString &executable)
{
    const QDir prefix(QFileInfo(executable).path() + u"/..");
    return {QDir::cleanPath(prefix.filePath(u"lib/vesk"_s)),
            QDir::cleanPath(prefix.filePath(u"share/vesk"_s))};
}

std::unique_ptr<SpeechModule> loadSpeechModule(const InstalledFolders &folders,
                                               const SpeechLocations &locations)
{
    return load<SpeechModuleFactory>(folders, u"vesk-speech"_s).makeSpeechModule(locations);
}

ApplicationModuleFactory &loadApplicationModule(const InstalledFolders &folders)
{
    return load<ApplicationModuleFactory>(folders, u"vesk-desktop"_s);
}

} // namespace vesk
