#include "Foundation/VeskError.h"

namespace vesk {

VeskError::VeskError(Case errorCase, QString text, qint64 number)
    : m_case(errorCase)
    , m_text(std::move(text))
    , m_number(number)
{
}

VeskError VeskError::badConfig(QString underlyingDescription)
{
    return VeskError(Case::badConfig, std::move(underlyingDescription));
}

VeskError VeskError::unsupportedLocale(QString localeIdentifier)
{
    return VeskError(Case::unsupportedLocale, std::move(localeIdentifier));
}

VeskError VeskError::selectionTooLong(qint64 characters)
{
    return VeskError(Case::selectionTooLong, {}, characters);
}

VeskError VeskError::noMicrophone() { return VeskError(Case::noMicrophone); }
VeskError VeskError::microphoneDenied() { return VeskError(Case::microphoneDenied); }
VeskError VeskError::noSpeechModel() { return VeskError(Case::noSpeechModel); }
VeskError VeskError::noSelection() { return VeskError(Case::noSelection); }
VeskError VeskError::secureField() { return VeskError(Case::secureField); }
VeskError VeskError::selectionChanged() { return VeskError(Case::selectionChanged); }
VeskError VeskError::claudeDesktopConfig() { return VeskError(Case::claudeDesktopConfig); }

QString VeskError::errorDescription() const
{
    switch (m_case) {
    case Case::badConfig: return u"config.json cannot be read: " + m_text;
    case Case::unsupportedLocale: return u"Apple's speech recognition does not support " + m_text;
    case Case::selectionTooLong:
        return u"The selection is over " + QString::number(m_number) + u" characters";
    case Case::noMicrophone: return QStringLiteral("No microphone found");
    case Case::microphoneDenied: return QStringLiteral("Vesk has no access to the microphone");
    case Case::noSpeechModel: return QStringLiteral("The speech recognition model is missing");
    case Case::noSelection: return QStringLiteral("Select text before you speak a command");
    case Case::secureField: return QStringLiteral("Commands do not work in password fields");
    case Case::selectionChanged: return QStringLiteral("The selection changed. The result is in the menu");
    case Case::claudeDesktopConfig:
        return QStringLiteral(
            "Claude Desktop's claude_desktop_config.json is not valid JSON, so Vesk left it alone");
    }
    Q_UNREACHABLE();
}

} // namespace vesk
