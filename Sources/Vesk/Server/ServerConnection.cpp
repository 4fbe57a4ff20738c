#include "Server/ServerConnection.h"

#include "Foundation/Log.h"
#include "Server/DeviceID.h"
#include "Server/ServerError.h"

#include <QCoroNetworkReply>
#include <QNetworkReply>

#include <algorithm>
#include <cstring>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// A body that is sent once. QNetworkAccessManager sends a request again, POST or not, up to three times when
/// the connection drops before the answer begins; a dictation would be transcribed twice. Only a body that
/// cannot be rewound stops it. The price: a connection that died unnoticed, say while the computer slept,
/// shows as `offline` instead of being replaced in silence. A GET may still be sent again, which changes
/// nothing on the server.
class OnceOnlyBody final : public QIODevice {
public:
    OnceOnlyBody(QByteArray content, QObject *parent)
        : QIODevice(parent)
        , m_content(std::move(content))
    {
        open(ReadOnly | Unbuffered);
    }

    qint64 size() const override { return m_content.size(); }
    bool seek(qint64) override { return false; }
    bool reset() override { return false; }

protected:
    qint64 readData(char *target, qint64 most) override
    {
        const qint64 count = std::min<qint64>(most, m_content.size() - m_taken);
        if (count <= 0) {
            return -1;
        }
        std::memcpy(target, m_content.constData() + m_taken, static_cast<size_t>(count));
        m_taken += count;
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_content;
    qint64 m_taken = 0;
};

/// Collects an answer's body while it arrives, and ends the exchange when it grows too long.
class Download {
public:
    explicit Download(QNetworkReply &reply)
    {
        QObject::connect(&reply, &QNetworkReply::metaDataChanged, &m_context, [this, &reply] {
            if (reply.header(QNetworkRequest::ContentLengthHeader).toLongLong()
                > ServerConnection::LongestAnswer) {
                refuse(reply);
            }
        });
        QObject::connect(&reply, &QNetworkReply::readyRead, &m_context, [this, &reply] { take(reply); });
    }

    void take(QNetworkReply &reply)
    {
        // In the pieces that are there; one byte more than allowed shows that there is more, without the
        // rest.
        while (reply.bytesAvailable() > 0 && body.size() <= ServerConnection::LongestAnswer) {
            const QByteArray piece = reply.read(
                std::min(reply.bytesAvailable(), ServerConnection::LongestAnswer + 1 - body.size()));
            if (piece.isEmpty()) {
                break;
            }
            body += piece;
        }
        if (body.size() > ServerConnection::LongestAnswer) {
            refuse(reply);
        }
    }

    QByteArray body;
    bool isTooLong = false;

private:
    void refuse(QNetworkReply &reply)
    {
        if (!isTooLong) {
            isTooLong = true;
            reply.abort(); // resumes the waiting coroutine, which destroys this object
        }
    }

    QObject m_context;
};

/// Whether the error says something about the exchange, not about the status: Qt calls every 4xx and 5xx an
/// error too, and those are answers.
bool isOfTransport(QNetworkReply::NetworkError error)
{
    switch (error) {
    case QNetworkReply::NoError:
    case QNetworkReply::ContentAccessDenied:
    case QNetworkReply::ContentOperationNotPermittedError:
    case QNetworkReply::ContentNotFoundError:
    case QNetworkReply::AuthenticationRequiredError:
    case QNetworkReply::ContentConflictError:
    case QNetworkReply::ContentGoneError:
    case QNetworkReply::ContentReSendError: // after a 307 or 308, which Qt prepares to follow in any case
    case QNetworkReply::InternalServerError:
    case QNetworkReply::OperationNotImplementedError:
    case QNetworkReply::ServiceUnavailableError:
    case QNetworkReply::ProtocolInvalidOperationError:
    case QNetworkReply::ProxyAuthenticationRequiredError:
    case QNetworkReply::UnknownContentError: // also a body that cannot be unpacked
    case QNetworkReply::UnknownServerError: return false;
    default: return true;
    }
}

/// Whether the connection ended before the body did. Mostly Qt says so itself; where it learns of the end
/// before it has read any of the body, it calls the answer complete: a failure by its status, and any answer
/// in chunks. A body whose length is not known (in chunks, or unpacked by Qt, which takes the length away)
/// shows it by an object that is never closed.
bool endsEarly(const QNetworkReply &reply, const QByteArray &body)
{
    const QVariant length = reply.header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid()) {
        return body.size() < length.toLongLong();
    }
    const QByteArrayView text = QByteArrayView(body).trimmed();
    return text.startsWith('{') && !text.endsWith('}');
}

/// Qt's words for what went wrong; they name the address, never the token or the body.
QString reason(const QNetworkReply &reply)
{
    return reply.error() == QNetworkReply::OperationCanceledError
        ? u"no progress for %1 ms"_s.arg(reply.request().transferTimeout())
        : reply.errorString().simplified();
}

} // namespace

ServerConnection::ServerConnection(const Host &host, double patience)
    : m_version(QStringLiteral(VESK_VERSION))
    , m_deviceID(vesk::deviceID(host))
    , m_deviceName(host.localizedName().value_or(u"Mac"_s))
    , m_patience(patience)
{
}

ServerConnection::~ServerConnection()
{
    *m_isEnding = true;
    const auto replies = m_manager.findChildren<QNetworkReply *>(Qt::FindDirectChildrenOnly);
    for (QNetworkReply *reply : replies) {
        reply->abort(); // those who wait for it go on at once, so that none is left hanging
    }
}

QNetworkReply *ServerConnection::start(HttpMethod method, QNetworkRequest request, const QByteArray &body)
{
    using Request = QNetworkRequest;
    // A redirect would carry the token along; the server's address is the person's to change.
    request.setAttribute(Request::RedirectPolicyAttribute, Request::ManualRedirectPolicy);
    request.setAttribute(Request::Http2AllowedAttribute, true);
    request.setAttribute(Request::CookieLoadControlAttribute, Request::Manual);
    request.setAttribute(Request::CookieSaveControlAttribute, Request::Manual);
    request.setAttribute(Request::AuthenticationReuseAttribute, Request::Manual);
    request.setHeader(Request::UserAgentHeader, QString(u"Vesk/" + m_version));
    request.setTransferTimeout(std::max(1, static_cast<int>(request.transferTimeout() * m_patience)));
    if (method == HttpMethod::get) {
        return m_manager.get(request);
    }
    auto device = std::make_unique<OnceOnlyBody>(body, nullptr);
    QNetworkReply *reply = m_manager.post(request, device.get());
    device.release()->setParent(reply);
    return reply;
}

Task<ServerAnswer> ServerConnection::exchange(HttpMethod method, QNetworkRequest request, QByteArray body)
{
    const std::shared_ptr<const bool> isEnding = m_isEnding;
    if (*isEnding) {
        throw ServerError::offline();
    }
    struct Later {
        void operator()(QNetworkReply *reply) const { reply->deleteLater(); }
    };
    const std::unique_ptr<QNetworkReply, Later> reply(start(method, request, body));
    Download download(*reply);
    co_await reply.get();
    // This object may be gone; only what is held here may be used.
    if (!download.isTooLong && !isOfTransport(reply->error())) {
        download.take(*reply);
    }
    if (download.isTooLong) {
        throw ServerError::other(u"The Vesk server's answer is too long."_s);
    }
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status == 0 || isOfTransport(reply->error())) {
        if (!*isEnding) { // else it was us
            Log::write(u"server offline: " + reason(*reply));
        }
        throw ServerError::offline();
    }
    if (endsEarly(*reply, download.body)) {
        Log::write(u"server offline: the answer ended early"_s);
        throw ServerError::offline();
    }
    if (status < 400 && reply->error() == QNetworkReply::UnknownContentError) {
        Log::write(u"server answer unreadable: " + reason(*reply));
        throw ServerError::other(u"The Vesk server's answer cannot be read."_s);
    }
    co_return ServerAnswer{status, std::move(download.body)};
}

} // namespace vesk
