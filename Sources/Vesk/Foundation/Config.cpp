#include "Foundation/Config.h"

#include "Foundation/Files.h"
#include "Foundation/HomeDirectory.h"
#include "Foundation/Json.h"
#include "Foundation/VeskError.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

namespace vesk {

using namespace Qt::StringLiterals;

// A name that no resolver will ever answer, until there is a public server: nobody's words go astray before a
// person has entered a server's address.
QString Config::defaultServerURL() { return u"https://vesk.example/api/v1"_s; }

const QString &Config::directory()
{
    static const QString path = homeDirectory() + u"/Library/Application Support/Vesk";
    return path;
}

const QString &Config::file()
{
    static const QString path = directory() + u"/config.json";
    return path;
}

Config Config::decode(const QByteArray &document)
{
    const JsonReader reader(Json::object(document));
    Config config;
    const auto text = [&reader](QString &field, QLatin1StringView key) {
        field = reader.optionalString(key).value_or(field);
    };
    const auto flag = [&reader](bool &field, QLatin1StringView key) {
        field = reader.optionalBoolean(key).value_or(field);
    };
    text(config.hotkey, "hotkey"_L1);
    text(config.commandHotkey, "commandHotkey"_L1);
    text(config.locale, "locale"_L1);
    text(config.microphone, "microphone"_L1);
    flag(config.cleanup, "cleanup"_L1);
    flag(config.useAppContext, "useAppContext"_L1);
    flag(config.keepHistory, "keepHistory"_L1);
    flag(config.recordCallAudio, "recordCallAudio"_L1);
    flag(config.meetingReminders, "meetingReminders"_L1);
    config.vocabulary = reader.optionalStrings("vocabulary"_L1).value_or(config.vocabulary);
    text(config.speech, "speech"_L1);
    text(config.serverURL, "serverURL"_L1);
    return config;
}

QByteArray Config::encode() const
{
    const QJsonObject object = {
        {u"hotkey"_s, hotkey},
        {u"commandHotkey"_s, commandHotkey},
        {u"locale"_s, locale},
        {u"microphone"_s, microphone},
        {u"cleanup"_s, cleanup},
        {u"useAppContext"_s, useAppContext},
        {u"keepHistory"_s, keepHistory},
        {u"recordCallAudio"_s, recordCallAudio},
        {u"meetingReminders"_s, meetingReminders},
        {u"vocabulary"_s, QJsonArray::fromStringList(vocabulary)},
        {u"speech"_s, speech},
        {u"serverURL"_s, serverURL},
    };
    return QJsonDocument(object).toJson(QJsonDocument::Indented); // sorts the keys
}

Config Config::load()
{
    if (!QFileInfo::exists(file())) {
        const Config defaults;
        defaults.write();
        return defaults;
    }
    const QByteArray document = Files::read(file());
    try {
        return decode(document);
    } catch (const DecodingError &error) {
        throw VeskError::badConfig(error.errorDescription());
    }
}

void Config::write() const
{
    Files::makeFolder(directory());
    Files::replace(file(), encode());
}

HotkeyKey Config::dictationKey() const { return hotkeyKey(hotkey).value_or(HotkeyKey::rightOption); }

std::optional<HotkeyKey> Config::commandKey() const
{
    const auto key = hotkeyKey(commandHotkey);
    return key == dictationKey() ? std::nullopt : key;
}

std::vector<HotkeyKey> Config::watchedKeys() const
{
    std::vector<HotkeyKey> keys = {dictationKey()};
    if (const auto key = commandKey()) {
        keys.push_back(*key);
    }
    return keys;
}

} // namespace vesk
