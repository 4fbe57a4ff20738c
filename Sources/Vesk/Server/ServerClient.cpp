#include "Server/ServerClient.h"

#include "Foundation/Config.h"
#include "Server/AccountFile.h"
#include "Server/ServerConnection.h"
#include "Server/ServerError.h"

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

Config storedSettings()
{
    try {
        return Config::load();
    } catch (const UserError &) { // the application shows it when it loads its settings
        return {};
    }
}

/// The address of the server's API; nothing when the text is no address of a web server. A name and password
/// in it are left out: the token says who asks.
std::optional<QUrl> serverAddress(const QString &text)
{
    const QUrl url(text.trimmed(), QUrl::StrictMode);
    const bool isWeb = url.scheme() == "https"_L1 || url.scheme() == "http"_L1;
    if (!url.isValid() || !isWeb || url.host().isEmpty()) {
        return std::nullopt;
    }
    return url.adjusted(QUrl::RemoveUserInfo);
}

} // namespace

ServerClient::ServerClient(ServerConnection &connection, QUrl baseURL, std::optional<QString> token)
    : m_connection(&connection)
    , m_baseURL(std::move(baseURL))
    , m_token(std::move(token))
{
}

ServerClient ServerClient::current(ServerConnection &connection)
{
    const QUrl url = serverAddress(storedSettings().serverURL).value_or(QUrl(Config::defaultServerURL()));
    const auto account = AccountFile::read();
    return {connection, url, account ? std::optional(account->token) : std::nullopt};
}

QNetworkRequest ServerClient::request(const QString &path, Seconds timeout) const
{
    QString fullPath = m_baseURL.path(QUrl::FullyEncoded);
    if (!fullPath.endsWith(u'/')) {
        fullPath += u'/';
    }
    fullPath += path;
    QUrl url = m_baseURL;
    url.setPath(fullPath, QUrl::StrictMode);

    QNetworkRequest request(url);
    request.setTransferTimeout(static_cast<int>(std::chrono::milliseconds(timeout).count()));
    request.setRawHeader("Accept", "application/json");
    request.setRawHeader("X-Vesk-Version", m_connection->version().toUtf8());
    if (m_token) {
        request.setRawHeader("Authorization", "Bearer " + m_token->toUtf8());
    }
    return request;
}

Task<JsonReader> ServerClient::send(const QString &path, HttpMethod method,
                                    const std::optional<QJsonObject> &json, Seconds timeout) const
{
    QNetworkRequest prepared = request(path, timeout);
    QByteArray body;
    if (json) {
        prepared.setRawHeader("Content-Type", "application/json");
        body = Json::compact(*json);
    }
    return perform(*m_connection, method, prepared, body);
}

Task<JsonReader> ServerClient::send(const QString &path, const MultipartBody::Fields &form,
                                    const std::optional<QString> &audioFile) const
{
    return upload(*m_connection, request(path, Seconds(60)), form, audioFile);
}

Task<JsonReader> ServerClient::upload(ServerConnection &connection, QNetworkRequest request,
                                      MultipartBody::Fields form, std::optional<QString> audioFile)
{
    const MultipartBody body(form, audioFile);
    request.setRawHeader("Content-Type", body.contentType());
    co_return co_await perform(connection, HttpMethod::post, request, body.bytes());
}

Task<JsonReader> ServerClient::perform(ServerConnection &connection, HttpMethod method,
                                       QNetworkRequest request, QByteArray body)
{
    const ServerAnswer answer = co_await connection.exchange(method, request, body);
    if (answer.status < 200 || answer.status > 299) {
        throw error(answer.status, answer.body);
    }
    co_return JsonReader(answer.body.isEmpty() ? QJsonObject() : Json::object(answer.body));
}

QString ServerClient::json(const QJsonValue &value)
{
    return value.isUndefined() ? u"null"_s : QString::fromUtf8(Json::compact(value));
}

ServerError ServerClient::error(int status, const QByteArray &body)
{
    std::optional<QString> code;
    std::optional<QString> message;
    std::optional<QString> raw;
    try {
        const JsonReader reader(Json::object(body));
        const auto sentCode = reader.optionalString("error"_L1);
        const auto sentMessage = reader.optionalString("message"_L1);
        raw = reader.optionalString("raw"_L1);
        code = sentCode; // all or nothing: a damaged answer is not believed in part
        message = sentMessage;
    } catch (const DecodingError &) { // a page of some gateway in between, as a rule; the status says enough
    }
    const QString sentence = message.value_or(u"The Vesk server answered %1."_s.arg(status));
    if (code == "signed_out"_L1) {
        return ServerError::signedOut(sentence);
    }
    if (code == "upstream"_L1) {
        return ServerError::upstream(sentence, raw);
    }
    if (code == "expired"_L1) {
        return ServerError::expired(sentence);
    }
    return ServerError::other(sentence);
}

} // namespace vesk
