#pragma once

#include <QString>

#include <optional>

namespace vesk {

/// The stored sign-in, "account.json" in the program's folder, readable by its owner only. Blocking file
/// access, any thread.
struct AccountFile {
    QString token; ///< goes along with every request
    QString email;

    static const QString &path();

    /// Whether the text can stand in a header as it is: visible ASCII, nothing else.
    static bool isToken(QStringView text);

    /// Nothing when the file is missing, cannot be read, or holds no usable token: signed out.
    static std::optional<AccountFile> read();

    /// Throws FileError.
    void write() const;

    /// No error if there is none. Throws FileError.
    static void remove();
};

} // namespace vesk
