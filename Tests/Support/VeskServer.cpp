#include "Support/VeskServer.h"

#include "Support/HttpAnswering.h"
#include "Support/SelfSignedCertificate.h"

#include <QSslConfiguration>
#include <QSslServer>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <sys/socket.h>

namespace vesk {

namespace {

constexpr QByteArrayView BasePath = "/api/v1/";

/// Segments as on a network. In the 64 kB ones of the loopback, an upload's pieces are too small to be sent
/// at once, and each exchange would wait 40 ms for a delayed acknowledgement that no network causes so.
void useSegmentsOfANetwork(qintptr socket)
{
    const int bytes = 1460;
    ::setsockopt(static_cast<int>(socket), IPPROTO_TCP, TCP_MAXSEG, &bytes, sizeof bytes);
}

} // namespace

VeskServer::VeskServer(Security security, QObject *parent)
    : QObject(parent)
    , m_server(security == Security::plain ? new QTcpServer(this) : new QSslServer(this))
    , m_tokens({validToken().toLatin1()})
{
    if (auto *secure = qobject_cast<QSslServer *>(m_server)) {
        const SelfSignedCertificate identity = makeSelfSignedCertificate();
        m_certificate = identity.certificate;
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setLocalCertificate(identity.certificate);
        configuration.setPrivateKey(identity.key);
        configuration.setPeerVerifyMode(QSslSocket::VerifyNone); // of clients
        secure->setSslConfiguration(configuration);
    }
    connect(m_server, &QTcpServer::pendingConnectionAvailable, this, [this] {
        while (QTcpSocket *socket = m_server->nextPendingConnection()) {
            accept(socket);
        }
    });
    if (!m_server->listen(QHostAddress::LocalHost)) {
        throw std::runtime_error(m_server->errorString().toStdString());
    }
    useSegmentsOfANetwork(m_server->socketDescriptor());
}

VeskServer::~VeskServer() = default;

quint16 VeskServer::port() const { return m_server->serverPort(); }

QUrl VeskServer::baseURL() const
{
    QUrl url;
    url.setScheme(m_certificate.isNull() ? QStringLiteral("http") : QStringLiteral("https"));
    url.setHost(QStringLiteral("127.0.0.1"));
    url.setPort(port());
    url.setPath(QStringLiteral("/api/v1"));
    return url;
}

void VeskServer::script(const QByteArray &path, Script script) { m_scripts[path] = std::move(script); }

void VeskServer::scriptEverything(Script script) { m_everything = std::move(script); }

void VeskServer::scriptOnce(const QByteArray &path, Script script)
{
    m_nextScripts[path].push_back(std::move(script));
}

std::vector<ReceivedRequest> VeskServer::requests(const QByteArray &path) const
{
    std::vector<ReceivedRequest> found;
    std::copy_if(m_requests.begin(), m_requests.end(), std::back_inserter(found),
                 [&path](const ReceivedRequest &request) { return request.path == path; });
    return found;
}

void VeskServer::accept(QTcpSocket *socket)
{
    ++m_connectionCount;
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    const auto buffer = std::make_shared<QByteArray>();
    const auto readMore = [this, socket, buffer] { read(socket, *buffer); };
    connect(socket, &QTcpSocket::readyRead, this, readMore);
    readMore(); // what came with the last step of the TLS handshake
}

void VeskServer::read(QTcpSocket *socket, QByteArray &buffer)
{
    buffer += socket->readAll();
    while (auto request = takeRequest(buffer)) {
        const auto start = std::chrono::steady_clock::now();
        request->path =
            request->target.startsWith(BasePath) ? request->target.mid(BasePath.size()) : request->target;
        const Script script = scriptFor(*request);
        sendAnswer(*socket, script, script.answer ? *script.answer : ordinaryAnswer(*request));
        request->handling = std::chrono::steady_clock::now() - start;
        m_requests.push_back(*request);
        Q_EMIT received(m_requests.back());
    }
}

Script VeskServer::scriptFor(const ReceivedRequest &request)
{
    auto &next = m_nextScripts[request.path];
    if (!next.empty()) {
        const Script script = next.front();
        next.pop_front();
        return script;
    }
    const auto found = m_scripts.constFind(request.path);
    return found == m_scripts.constEnd() ? m_everything : *found;
}

} // namespace vesk
