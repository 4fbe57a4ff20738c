#pragma once

#include "Foundation/HotkeyKey.h"

#include <QJsonObject>
#include <QStringList>

#include <optional>
#include <vector>

namespace vesk {

/// The person's settings, as they stand in "config.json". A plain value: whoever needs a setting loads the
/// file afresh, so that an edit takes effect at once and nobody shares state. Blocking file access, any
/// thread.
struct Config {
    QString hotkey = QStringLiteral("rightOption");         ///< the dictation key, a HotkeyKey's raw value
    QString commandHotkey = QStringLiteral("rightCommand"); ///< the voice-command key, or "off"
    QString locale = QStringLiteral("en-US");    ///< what is spoken, for recognition on the machine
    QString microphone = QStringLiteral("auto"); ///< "auto" or "system"
    bool cleanup = true;                         ///< the server cleans up dictated text
    bool useAppContext = true;                   ///< the field's context goes along with it
    bool keepHistory = true;
    bool recordCallAudio = true; ///< notes also record what the computer plays ("Them")
    bool meetingReminders = true;
    QStringList vocabulary;                   ///< the person's own words
    QString speech = QStringLiteral("cloud"); ///< who recognises dictation: "cloud" or "mac" (this machine)
    QString serverURL = defaultServerURL();

    static QString defaultServerURL();

    /// "Library/Application Support/Vesk" under the home folder; found once per process.
    static const QString &directory();
    /// directory() + "/config.json"; found once per process.
    static const QString &file();

    /// Reads the record from JSON: a missing or null key keeps its default, a wrong type fails the whole
    /// record with a DecodingError, unknown keys are ignored.
    static Config decode(const QByteArray &document);

    /// All keys, pretty-printed, in alphabetical order.
    QByteArray encode() const;

    /// Loads file(); when there is none, the defaults are written there and returned. Throws
    /// VeskError::badConfig for content that cannot be decoded (the file is left alone) and FileError when
    /// reading or writing fails.
    static Config load();

    /// Writes the record to file() with mode 0600, atomically. Throws FileError.
    void write() const;

    /// `hotkey`, where an unknown name means the right Option key.
    HotkeyKey dictationKey() const;

    /// Nothing when voice commands are off: "off", an unknown name, or the dictation key once more.
    std::optional<HotkeyKey> commandKey() const;

    /// The dictation key, then the command key if there is one.
    std::vector<HotkeyKey> watchedKeys() const;

    friend bool operator==(const Config &, const Config &) = default;
};

} // namespace vesk
