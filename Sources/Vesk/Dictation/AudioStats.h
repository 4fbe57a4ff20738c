#pragma once

#include <QString>

namespace vesk {

/// What a recording was like, from its start on. A plain value.
struct AudioStats {
    QString device = QStringLiteral("?"); ///< the microphone's name; "?" when it could not be read
    qint64 frames = 0;                    ///< frames received, at the device's rate
    float peak = 0;                       ///< loudness of the loudest block, 0..1 (AudioInput::loudness)
    qint64 restarts = 0;                  ///< times the microphone was attached again after a change

    /// For the log; holds nothing of what was said.
    QString summary() const;

    /// For the person whose dictation produced no words.
    QString silenceMessage() const;

    friend bool operator==(const AudioStats &, const AudioStats &) = default;
};

} // namespace vesk
