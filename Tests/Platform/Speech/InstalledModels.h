#pragma once

#include "Platform/Linux/Speech/FfmpegAudioConverter.h"
#include "Platform/Linux/Speech/FfmpegAudioFiles.h"
#include "Platform/Linux/Speech/SherpaSpeechModels.h"
#include "Support/TemporaryHome.h"

#include <QRegularExpression>

namespace vesk::test {

inline const QString InstalledSpeech = QStringLiteral(VESK_TEST_SPEECH_FOLDER);

/// Loaded once for the whole program: it takes seconds under a sanitizer.
inline SherpaSpeechModels &installedModels()
{
    static FfmpegAudioConverters converters;
    static SherpaSpeechModels shared({InstalledSpeech + u"/models", testHome() + u"/Models"}, converters);
    return shared;
}

/// What can be compared of two texts.
inline QStringList words(const QString &text)
{
    static const QRegularExpression notLetters(QStringLiteral("[^a-z']+"));
    return text.toLower().split(notLetters, Qt::SkipEmptyParts);
}

} // namespace vesk::test
