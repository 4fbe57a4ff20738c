// What the server answers when no script says otherwise: the language work done just well enough to be told
// from its input.

#include "Support/VeskServer.h"

#include <QJsonDocument>
#include <QRegularExpression>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

HttpAnswer json(int status, const QJsonObject &object)
{
    return {status, QJsonDocument(object).toJson(QJsonDocument::Compact), {}};
}

HttpAnswer failure(int status, const QString &code, const QString &message)
{
    return json(status, {{u"error"_s, code}, {u"message"_s, message}});
}

/// Without hesitations, with a capital letter and a full stop.
QString cleaned(QString transcript)
{
    static const QRegularExpression hesitations(u"\\b(um|uh)\\b"_s,
                                                QRegularExpression::CaseInsensitiveOption);
    QString text = transcript.remove(hesitations).simplified();
    if (!text.isEmpty()) {
        text[0] = text[0].toUpper();
        text += text.endsWith(u'.') ? u""_s : u"."_s;
    }
    return text;
}

HttpAnswer languageAnswer(const ReceivedRequest &request)
{
    if (request.path == "cleanup") {
        return json(200, {{u"text"_s, cleaned(request.json().value("transcript"_L1).toString())}});
    }
    static const QHash<QByteArray, QByteArray> Answers = {
        {"dictation", R"({"text":"This is what was said.","raw":"um this is what was said","words":5})"},
        {"command", R"({"text":"AS IT WAS","unchanged":false,"instruction":"make it loud"})"},
        {"notes/summary", R"({"title":"A meeting","summary":"- Somebody said something."})"},
        {"notes/ask", R"({"answer":"About this note."})"},
        {"notes/ask-all", R"({"answer":"About all notes."})"},
    };
    if (Answers.contains(request.path)) {
        return jsonAnswer(Answers[request.path]);
    }
    return failure(404, u"not_found"_s, u"There is no such operation."_s);
}

QByteArray bearer(const ReceivedRequest &request)
{
    const QByteArray value = header(request.headers, "Authorization").value_or(QByteArray());
    return value.startsWith("Bearer ") ? value.mid(7) : QByteArray();
}

} // namespace

bool VeskServer::isSignedIn(const ReceivedRequest &request) const
{
    return m_tokens.contains(bearer(request));
}

HttpAnswer VeskServer::ordinaryAnswer(const ReceivedRequest &request)
{
    const bool isQuestion = request.path == "account";
    if (request.method != (isQuestion ? "GET" : "POST")) {
        return failure(405, u"method"_s, u"That is not how this is asked."_s);
    }
    if (request.path == "auth/start" || request.path == "auth/poll") {
        return signInAnswer(request);
    }
    if (!isSignedIn(request)) {
        return failure(401, u"signed_out"_s, u"You are signed out. Sign in again."_s);
    }
    if (request.path == "auth/sign-out") {
        m_tokens.remove(bearer(request));
        return {204, {}, {}};
    }
    if (isQuestion) {
        return json(200, {{u"email"_s, u"someone@example.com"_s}, {u"plan"_s, u"free"_s}});
    }
    return languageAnswer(request);
}

HttpAnswer VeskServer::signInAnswer(const ReceivedRequest &request)
{
    if (request.path == "auth/start") {
        m_signingIn = request.json().value("email"_L1).toString().toUtf8();
        return json(200, {{u"request"_s, u"sign-in-1"_s}, {u"poll_every"_s, pollEvery}});
    }
    if (request.json().value("request"_L1) != "sign-in-1"_L1) {
        return failure(410, u"expired"_s, u"The link has expired. Sign in again."_s);
    }
    if (pendingPolls > 0) {
        --pendingPolls;
        return json(200, {});
    }
    const QByteArray token = "token-of-" + m_signingIn.toHex();
    m_tokens.insert(token);
    const QJsonObject account = {{u"email"_s, QString::fromUtf8(m_signingIn)}};
    return json(200, {{u"token"_s, QString::fromLatin1(token)}, {u"account"_s, account}});
}

} // namespace vesk
