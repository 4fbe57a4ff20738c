// The speech module: what the program loads at run time when something must be recognised or decoded.

#include "Platform/Linux/Speech/FfmpegAudioConverter.h"
#include "Platform/Linux/Speech/FfmpegAudioFiles.h"
#include "Platform/Linux/Speech/SherpaSpeechModels.h"

#include <QObject>

namespace vesk {

namespace {

class LinuxSpeechModule final : public SpeechModule {
public:
    explicit LinuxSpeechModule(const SpeechLocations &locations)
        : m_speechModels(locations, m_audioConverters)
    {
    }

    SpeechModels &speechModels() override { return m_speechModels; }
    AudioFiles &audioFiles() override { return m_audioFiles; }
    AudioConverters &audioConverters() override { return m_audioConverters; }

private:
    FfmpegAudioConverters m_audioConverters;
    FfmpegAudioFiles m_audioFiles;
    SherpaSpeechModels m_speechModels;
};

} // namespace

class LinuxSpeechPlugin final : public QObject, public SpeechModuleFactory {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID VESK_SPEECH_MODULE_IID)
    Q_INTERFACES(vesk::SpeechModuleFactory)

public:
    std::unique_ptr<SpeechModule> makeSpeechModule(const SpeechLocations &locations) override
    {
        return std::make_unique<LinuxSpeechModule>(locations);
    }
};

} // namespace vesk

#include "SpeechPlugin.moc"
