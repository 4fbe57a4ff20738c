#pragma once

#include "Foundation/Task.h"
#include "Platform/Host.h"

#include <QNetworkAccessManager>
#include <QNetworkRequest>

#include <memory>

namespace vesk {

enum class HttpMethod { get, post };

/// A complete answer, whatever its status.
struct ServerAnswer {
    int status = 0;
    QByteArray body;
};

/// The program's open connections to its server, and who the program says it is. One per process, made by the
/// composition root, on the main thread; it must end before the application object does. What is under way
/// then fails with ServerError::offline before the destructor returns.
class ServerConnection {
public:
    /// The longest answer that is read, decompressed.
    static constexpr qint64 LongestAnswer = 64 * 1024 * 1024;

    /// `patience` scales every time-out; a hurried caller has less than 1.
    explicit ServerConnection(const Host &host, double patience = 1);
    ~ServerConnection();
    ServerConnection(const ServerConnection &) = delete;
    ServerConnection &operator=(const ServerConnection &) = delete;

    const QString &version() const { return m_version; }
    const QString &deviceID() const { return m_deviceID; }
    const QString &deviceName() const { return m_deviceName; }

    /// Sends the request once and waits for the whole answer; redirects are answers like any other. The
    /// request's transfer time-out counts from the last progress. Throws ServerError: offline, its reason
    /// going to the log, and other for an answer that is too long.
    Task<ServerAnswer> exchange(HttpMethod method, QNetworkRequest request, QByteArray body);

private:
    QNetworkReply *start(HttpMethod method, QNetworkRequest request, const QByteArray &body);

    QString m_version;
    QString m_deviceID;
    QString m_deviceName;
    double m_patience;
    std::shared_ptr<bool> m_isEnding = std::make_shared<bool>(false); ///< outlives this, in what is under way
    QNetworkAccessManager m_manager;
};

} // namespace vesk
