#pragma once

#include "Foundation/UserError.h"

namespace vesk {

/// The sound server cannot do what was asked of it.
class SoundServerError final : public UserError {
public:
    static SoundServerError noAnswer();
    static SoundServerError notRunning();

    /// `error` is a number of libpulse (PA_ERR_…).
    static SoundServerError refused(int error);

    QString errorDescription() const override { return m_description; }

private:
    explicit SoundServerError(QString description);

    QString m_description;
};

} // namespace vesk
