#include "Support/VeskServer.h"

#include <QFile>
#include <QProcess>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <sys/socket.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView BasePath = "/api/v1/";

/// Segments as on a network. In the 64 kB ones of the loopback, an upload's pieces are too small to be sent
/// at once, and each exchange would wait 40 ms for a delayed acknowledgement that no network causes so.
void useSegmentsOfANetwork(qintptr socket)
{
    const int bytes = 1460;
    ::setsockopt(static_cast<int>(socket), IPPROTO_TCP, TCP_MAXSEG, &bytes, sizeof bytes);
}

QByteArray head(const HttpAnswer &answer, bool isChunked)
{
    HttpHeaders headers = answer.headers;
    if (!header(headers, "Content-Type")) {
        headers.emplaceBack("Content-Type", "application/json");
    }
    if (isChunked) {
        headers.emplaceBack("Transfer-Encoding", "chunked");
    } else if (!header(headers, "Content-Length") && answer.status != 204) {
        headers.emplaceBack("Content-Length", QByteArray::number(answer.body.size()));
    }
    QByteArray bytes = "HTTP/1.1 " + QByteArray::number(answer.status) + " Loopback\r\n";
    for (const auto &[name, value] : headers) {
        bytes += name + ": " + value + "\r\n";
    }
    return bytes + "\r\n";
}

QByteArray framed(const QByteArray &body, bool isChunked)
{
    if (!isChunked || body.isEmpty()) {
        return body;
    }
    return QByteArray::number(body.size(), 16) + "\r\n" + body + "\r\n";
}

/// One byte at a time, until the socket or the answer ends.
void drip(QTcpSocket &socket, QByteArray bytes, std::chrono::milliseconds interval)
{
    auto *timer = new QTimer(&socket);
    timer->setTimerType(Qt::PreciseTimer);
    const auto left = std::make_shared<QByteArray>(std::move(bytes));
    QObject::connect(timer, &QTimer::timeout, &socket, [timer, left, &socket] {
        socket.write(left->left(1));
        socket.flush();
        left->remove(0, 1);
        if (left->isEmpty()) {
            timer->stop();
        }
    });
    timer->start(interval);
}

void sendNow(QTcpSocket &socket, const Script &script, const HttpAnswer &answer)
{
    using Manner = Script::Manner;
    const QByteArray beginning = head(answer, script.isChunked);
    const QByteArray part = answer.body.left(script.stopAfter.value_or(answer.body.size() / 2));
    switch (script.manner) {
    case Manner::whole:
        socket.write(beginning + framed(answer.body, script.isChunked)
                     + (script.isChunked ? "0\r\n\r\n" : ""));
        return;
    case Manner::refuse: socket.disconnectFromHost(); return;
    case Manner::silent: return;
    case Manner::cutOff:
        socket.write(beginning + framed(part, script.isChunked));
        socket.disconnectFromHost();
        return;
    case Manner::stall: socket.write(beginning + framed(part, script.isChunked)); return;
    case Manner::drip:
        socket.write(beginning);
        drip(socket, answer.body, script.delay);
        return;
    case Manner::bare:
        socket.write(answer.body);
        socket.disconnectFromHost();
        return;
    }
}

/// Sends the answer in the manner of the script, now or on the socket's event loop.
void sendAnswer(QTcpSocket &socket, Script script, HttpAnswer answer)
{
    if (script.delay.count() == 0 || script.manner == Script::Manner::drip) {
        sendNow(socket, script, answer);
        return;
    }
    const auto delay = script.delay;
    QTimer::singleShot(delay, Qt::PreciseTimer, &socket,
                       [&socket, script = std::move(script), answer = std::move(answer)] {
                           sendNow(socket, script, answer);
                       });
}

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A fresh certificate for 127.0.0.1 that nobody has signed, made by the openssl program.
std::pair<QSslCertificate, QSslKey> makeSelfSignedCertificate()
{
    const QTemporaryDir folder;
    const QString certificate = folder.filePath(u"certificate.pem"_s);
    const QString key = folder.filePath(u"key.pem"_s);
    QProcess openssl;
    openssl.setProcessChannelMode(QProcess::MergedChannels);
    openssl.start(u"openssl"_s,
                  {u"req"_s, u"-x509"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s, u"ec_paramgen_curve:P-256"_s,
                   u"-noenc"_s, u"-days"_s, u"2"_s, u"-subj"_s, u"/CN=127.0.0.1"_s, u"-addext"_s,
                   u"subjectAltName=IP:127.0.0.1"_s, u"-keyout"_s, key, u"-out"_s, certificate});
    openssl.waitForFinished();
    std::pair made(QSslCertificate(content(certificate)), QSslKey(content(key), QSsl::Ec));
    if (made.first.isNull() || made.second.isNull()) {
        const QString said = openssl.errorString() + u' ' + QString::fromLocal8Bit(openssl.readAll());
        throw std::runtime_error("no certificate for the test server: " + said.toStdString());
    }
    return made;
}

} // namespace

VeskServer::VeskServer(Security security, QObject *parent)
    : QObject(parent)
    , m_server(security == Security::plain ? new QTcpServer(this) : new QSslServer(this))
    , m_tokens({validToken().toLatin1()})
{
    if (auto *secure = qobject_cast<QSslServer *>(m_server)) {
        const auto [certificate, key] = makeSelfSignedCertificate();
        m_certificate = certificate;
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setLocalCertificate(certificate);
        configuration.setPrivateKey(key);
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
    url.setScheme(m_certificate.isNull() ? u"http"_s : u"https"_s);
    url.setHost(u"127.0.0.1"_s);
    url.setPort(port());
    url.setPath(u"/api/v1"_s);
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
