// What the server answers when no script says otherwise: the language work done just well enough to be told
// from its input.

#include "Support/VeskServer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

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
QString cleaned(const QString &transcript)
{
    QStringList words = transcript.split(u' ', Qt::SkipEmptyParts);
    words.removeIf([](const QString &word) {
        return word.compare("um"_L1, Qt::CaseInsensitive) == 0
            || word.compare("uh"_L1, Qt::CaseInsensitive) == 0;
    });
    QString text = words.join(u' ');
    if (!text.isEmpty()) {
        text[0] = text[0].toUpper();
        if (!text.endsWith(u'.')) {
            text += u'.';
        }
    }
    return text;
}

HttpAnswer dictationAnswer(const ReceivedRequest &request)
{
    const auto parts = request.parts();
    if (!parts || parts->empty() || parts->back().name != "audio" || parts->back().content.isEmpty()) {
        return failure(400, u"no_audio"_s, u"The recording is missing."_s);
    }
    const QString raw = u"um this is what was said"_s;
    const QString text = cleaned(raw);
    return json(200, {{u"text"_s, text}, {u"raw"_s, raw}, {u"words"_s, text.count(u' ') + 1}});
}

HttpAnswer commandAnswer(const ReceivedRequest &request)
{
    QString selection;
    QString instruction = u"make it loud"_s; // as if heard in a recording
    for (const MultipartPart &part : request.parts().value_or(std::vector<MultipartPart>())) {
        if (part.name == "selection") {
            selection = QString::fromUtf8(part.content);
        } else if (part.name == "instruction") {
            instruction = QString::fromUtf8(part.content);
        }
    }
    const QString text = selection.toUpper();
    return json(200,
                {{u"text"_s, text}, {u"unchanged"_s, text == selection}, {u"instruction"_s, instruction}});
}

HttpAnswer languageAnswer(const ReceivedRequest &request)
{
    const QJsonObject asked = request.json();
    const QString question = asked.value("question"_L1).toString(u"what was missed"_s);
    if (request.path == "cleanup") {
        return json(200, {{u"text"_s, cleaned(asked.value("transcript"_L1).toString())}});
    }
    if (request.path == "dictation") {
        return dictationAnswer(request);
    }
    if (request.path == "command") {
        return commandAnswer(request);
    }
    if (request.path == "notes/summary") {
        return json(200, {{u"title"_s, u"A meeting"_s}, {u"summary"_s, u"- Somebody said something."_s}});
    }
    if (request.path == "notes/ask") {
        return json(200, {{u"answer"_s, QString(u"About this note: " + question)}});
    }
    if (request.path == "notes/ask-all") {
        const qsizetype count = asked.value("notes"_L1).toArray().size();
        return json(200, {{u"answer"_s, u"About %1 notes: %2"_s.arg(count).arg(question)}});
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
