#pragma once

#include "Platform/AudioConverter.h"
#include "Platform/AudioFiles.h"
#include "Platform/SpeechModels.h"

#include <QtPlugin>

namespace vesk {

/// Where a speech module finds what was installed with it and what the person added.
struct SpeechLocations {
    QString installedModels; ///< folder of the models that came with the program
    QString addedModels;     ///< folder of the models that the person added; need not exist
};

/// How this computer hears: the services of one module, owned by it and alive as long as it.
class SpeechModule {
public:
    virtual ~SpeechModule() = default;

    virtual SpeechModels &speechModels() = 0;
    virtual AudioFiles &audioFiles() = 0;
    virtual AudioConverters &audioConverters() = 0;
};

/// The entry of a speech module that is loaded at run time.
class SpeechModuleFactory {
public:
    virtual ~SpeechModuleFactory() = default;

    virtual std::unique_ptr<SpeechModule> makeSpeechModule(const SpeechLocations &locations) = 0;
};

} // namespace vesk

#define VESK_SPEECH_MODULE_IID "vesk.SpeechModuleFactory/1"
Q_DECLARE_INTERFACE(vesk::SpeechModuleFactory, VESK_SPEECH_MODULE_IID)
