#pragma once

#include "Foundation/UserError.h"

namespace vesk {

/// The program's own failures, each with its fixed sentence. A plain value; made by the named functions.
class VeskError final : public UserError {
public:
    enum class Case {
        badConfig,
        unsupportedLocale,
        selectionTooLong,
        noMicrophone,
        microphoneDenied,
        noSpeechModel,
        noSelection,
        secureField,
        selectionChanged,
        claudeDesktopConfig,
    };

    static VeskError badConfig(QString underlyingDescription);
    static VeskError unsupportedLocale(QString localeIdentifier);
    static VeskError selectionTooLong(qint64 characters);
    static VeskError noMicrophone();
    static VeskError microphoneDenied();
    static VeskError noSpeechModel();
    static VeskError noSelection();
    static VeskError secureField();
    static VeskError selectionChanged();
    static VeskError claudeDesktopConfig();

    Case errorCase() const { return m_case; }
    QString errorDescription() const override;

    friend bool operator==(const VeskError &a, const VeskError &b)
    {
        return a.m_case == b.m_case && a.m_text == b.m_text && a.m_number == b.m_number;
    }

private:
    explicit VeskError(Case errorCase, QString text = {}, qint64 number = 0);

    Case m_case;
    QString m_text;
    qint64 m_number;
};

} // namespace vesk
