#pragma once

#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QSet>
#include <QSslCertificate>
#include <QUrl>

#include <chrono>
#include <deque>
#include <optional>
#include <vector>

class QTcpServer;
class QTcpSocket;

namespace vesk {

using HttpHeaders = QList<std::pair<QByteArray, QByteArray>>;

/// The value of a header, its name compared without case; nothing when it is not there.
std::optional<QByteArray> header(const HttpHeaders &headers, QByteArrayView name);

struct MultipartPart {
    QByteArray name;
    QByteArray fileName;
    QByteArray contentType;
    QByteArray content;
};

/// A request as a test server received it.
struct ReceivedRequest {
    QByteArray method;
    QByteArray target; ///< with the base path
    QByteArray path;   ///< below it
    HttpHeaders headers;
    QByteArray body;
    std::chrono::nanoseconds handling{
        0}; ///< from its last byte to its answer's last byte, as the server saw it

    /// Empty for a body that is no JSON object.
    QJsonObject json() const;

    /// The parts of an upload; nothing for a body that is none.
    std::optional<std::vector<MultipartPart>> parts() const;
};

struct HttpAnswer {
    int status = 200;
    QByteArray body;
    HttpHeaders headers; ///< Content-Type and Content-Length are added where missing
};

/// Takes the first complete request from the buffer's front; nothing while it is incomplete.
std::optional<ReceivedRequest> takeRequest(QByteArray &buffer);

/// What the server does with a request, besides what it answers.
struct Script {
    enum class Manner {
        whole,  ///< answers as it should
        refuse, ///< closes the connection without a byte
        silent, ///< never answers
        cutOff, ///< closes the connection within the body
        stall,  ///< stops within the body and keeps the connection
        drip,   ///< sends the body byte after byte, `delay` apart
        bare,   ///< sends the body without any HTTP around it and closes
    };

    Manner manner = Manner::whole;
    std::optional<HttpAnswer> answer = {}; ///< the server's ordinary answer without it
    std::chrono::milliseconds delay{0};
    std::optional<qsizetype> stopAfter =
        {};                 ///< bytes of the body that a cut-off answer has; half of it without
    bool isChunked = false; ///< without announcing a length
};

inline HttpAnswer jsonAnswer(QByteArray body) { return {200, std::move(body), {}}; }
inline Script answering(HttpAnswer answer) { return {.answer = std::move(answer)}; }
inline Script behaving(Script::Manner manner) { return {.manner = manner}; }

/// Vesk's server, as far as the program can tell, on a loopback port of its own: plain HTTP/1.1, or TLS with
/// a certificate that nobody trusts. Works on the event loop of the thread that made it and is used there.
class VeskServer final : public QObject {
    Q_OBJECT

public:
    enum class Security { plain, selfSigned };

    /// Listens at once; without a port to listen on, or without the openssl program that makes its
    /// certificate, it throws std::runtime_error.
    explicit VeskServer(Security security = Security::plain, QObject *parent = nullptr);
    ~VeskServer() override;

    QUrl baseURL() const;
    quint16 port() const;
    const QSslCertificate &certificate() const { return m_certificate; }

    /// A token that is signed in from the start, as "someone@example.com".
    static QString validToken() { return QStringLiteral("loopback-token"); }

    /// From now on, for a path below the base ("auth/start"), or for every path that has no script.
    void script(const QByteArray &path, Script script);
    void scriptEverything(Script script);
    /// For the next request to the path, after those scripted so before.
    void scriptOnce(const QByteArray &path, Script script);

    const std::vector<ReceivedRequest> &requests() const { return m_requests; }
    std::vector<ReceivedRequest> requests(const QByteArray &path) const;
    int connectionCount() const { return m_connectionCount; }

    double pollEvery = 1; ///< what a started sign-in is told
    int pendingPolls = 1; ///< how many polls find the link not yet pressed

Q_SIGNALS:
    void received(const vesk::ReceivedRequest &request);

private:
    void accept(QTcpSocket *socket);
    void read(QTcpSocket *socket, QByteArray &buffer);
    Script scriptFor(const ReceivedRequest &request);
    HttpAnswer ordinaryAnswer(const ReceivedRequest &request);
    HttpAnswer signInAnswer(const ReceivedRequest &request);
    bool isSignedIn(const ReceivedRequest &request) const;

    QTcpServer *m_server;
    QSslCertificate m_certificate;
    int m_connectionCount = 0;
    std::vector<ReceivedRequest> m_requests;
    QHash<QByteArray, Script> m_scripts;
    QHash<QByteArray, std::deque<Script>> m_nextScripts;
    Script m_everything;
    QSet<QByteArray> m_tokens;
    QByteArray m_signingIn; ///< the address of the sign-in under way
};

} // namespace vesk
