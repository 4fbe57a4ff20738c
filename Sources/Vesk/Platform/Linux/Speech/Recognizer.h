#pragma once

#include "Foundation/UserError.h"
#include "Platform/Linux/Speech/ModelDescription.h"

#include <memory>
#include <span>

namespace vesk {

/// A speech model that is there but cannot be used. The recogniser's own reason goes to the log.
class RecognizerError final : public UserError {
public:
    explicit RecognizerError(QString modelName)
        : m_modelName(std::move(modelName))
    {
    }
    QString errorDescription() const override;

private:
    QString m_modelName;
};

/// A loaded speech model. Loading takes a second or two and some hundred megabytes; one decode runs at a
/// time, callers on other threads wait for their turn.
class Recognizer {
public:
    /// Loads the model for one of its languages. Throws VeskError::noSpeechModel when a file is missing,
    /// RecognizerError when the recogniser refuses it.
    Recognizer(const ModelDescription &model, const QString &language);
    ~Recognizer();
    Recognizer(const Recognizer &) = delete;
    Recognizer &operator=(const Recognizer &) = delete;

    /// What is said in at most half a minute of sound: 16 kHz, one channel. Takes 5–10 % of the sound's
    /// length. Throws RecognizerError.
    QString recognize(std::span<const float> samples);

    /// Makes the first real decode as fast as the later ones.
    void warmUp();

private:
    struct Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace vesk
