#pragma once

#include "Foundation/UserError.h"

#include <optional>

namespace vesk {

/// Why the server did not do what it was asked. The sentence is the server's own wherever it sent one, so it
/// is shown as it stands. A plain value; made by the named functions.
class ServerError final : public UserError {
public:
    enum class Case {
        signedOut, ///< the token is no longer valid
        upstream,  ///< a service behind the server failed
        expired,
        other,   ///< any other answer than success
        offline, ///< no complete answer: refused, not found, untrusted, timed out, cut off
    };

    static ServerError signedOut(QString message);
    static ServerError upstream(QString message, std::optional<QString> raw);
    static ServerError expired(QString message);
    static ServerError other(QString message);
    static ServerError offline();

    Case errorCase() const { return m_case; }
    /// What the service behind the server said, for diagnosis; only with `upstream`.
    const std::optional<QString> &raw() const { return m_raw; }
    QString errorDescription() const override { return m_message; }

    friend bool operator==(const ServerError &a, const ServerError &b)
    {
        return a.m_case == b.m_case && a.m_message == b.m_message && a.m_raw == b.m_raw;
    }

private:
    ServerError(Case errorCase, QString message, std::optional<QString> raw = {});

    Case m_case;
    QString m_message;
    std::optional<QString> m_raw;
};

} // namespace vesk
