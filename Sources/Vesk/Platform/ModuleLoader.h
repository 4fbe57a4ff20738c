#pragma once

#include "Foundation/UserError.h"
#include "Platform/ApplicationModule.h"
#include "Platform/SpeechModule.h"

namespace vesk {

/// A part of the program that is missing or does not fit. The loader's own reason goes to the log.
class ModuleError final : public UserError {
public:
    explicit ModuleError(QString moduleName);
    QString errorDescription() const override;

private:
    QString m_moduleName;
};

/// Where the program's own files lie: the build tree and an installation have the same shape.
struct InstalledFolders {
    QString modules; ///< lib/vesk
    QString data;    ///< share/vesk

    /// Found from the folder of the running executable. Needs the application object.
    static InstalledFolders ofThisProgram();

    /// The same without one, for the executable's path.
    static InstalledFolders ofProgram(const QString &executable);
};

/// Loads the module that hears; it stays loaded until the process ends. Throws ModuleError.
std::unique_ptr<SpeechModule> loadSpeechModule(const InstalledFolders &folders,
                                               const SpeechLocations &locations);

/// Loads the module that is the application; it stays loaded until the process ends. Throws ModuleError.
ApplicationModuleFactory &loadApplicationModule(const InstalledFolders &folders);

} // namespace vesk
