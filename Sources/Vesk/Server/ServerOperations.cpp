#include "Server/ServerOperations.h"

#include "Server/AccountFile.h"
#include "Server/ServerClient.h"
#include "Server/ServerConnection.h"
#include "Server/ServerContext.h"

#include <QJsonArray>

#include <cmath>

// One operation: a method of ServerClient that names path, body and time-out, and a decoder of its answer.

namespace vesk {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The record that an answer holds.
template <typename Record>
Task<Record> decoded(Task<JsonReader> answer, Record (*decode)(const JsonReader &))
{
    co_return decode(co_await answer);
}

QString decodeText(const JsonReader &answer) { return answer.string("text"_L1); }

QString decodeAnswer(const JsonReader &answer) { return answer.string("answer"_L1); }

QJsonArray array(const QStringList &strings) { return QJsonArray::fromStringList(strings); }

QJsonObject object(const NoteMaterial &note)
{
    QJsonObject object;
    for (const auto &[key, value] : note.asKeyValueRange()) {
        object.insert(key, value);
    }
    return object;
}

Task<> finished(Task<JsonReader> answer) { co_await answer; }

} // namespace

Dictated Dictated::decode(const JsonReader &answer)
{
    return {answer.string("text"_L1), answer.string("raw"_L1), answer.integer("words"_L1)};
}

Commanded Commanded::decode(const JsonReader &answer)
{
    return {answer.string("text"_L1), answer.boolean("unchanged"_L1), answer.string("instruction"_L1)};
}

NoteSummary NoteSummary::decode(const JsonReader &answer)
{
    return {answer.string("title"_L1), answer.string("summary"_L1)};
}

Started Started::decode(const JsonReader &answer)
{
    return {answer.string("request"_L1), answer.number("poll_every"_L1)};
}

Account Account::decode(const JsonReader &answer) { return {answer.string("email"_L1)}; }

Poll Poll::decode(const JsonReader &answer)
{
    const auto token = answer.optionalString("token"_L1);
    const auto account = answer.optionalObject("account"_L1);
    if (!token || !account) {
        return {};
    }
    if (!AccountFile::isToken(*token)) {
        throw DecodingError(u"\"token\" holds characters that a token cannot have"_s);
    }
    return {SignedIn{*token, Account::decode(*account)}};
}

Task<QString> ServerClient::cleanup(const QString &text, const std::optional<FocusContext> &context,
                                    const QStringList &vocabulary) const
{
    const QJsonObject json = {
        {u"transcript"_s, text},
        {u"context"_s, serverContext(context)},
        {u"vocabulary"_s, array(vocabulary)},
    };
    return decoded(send(u"cleanup"_s, HttpMethod::post, json, 30s), decodeText);
}

Task<Dictated> ServerClient::dictation(const QString &audioFile, const std::optional<FocusContext> &context,
                                       const QStringList &vocabulary) const
{
    const MultipartBody::Fields form = {
        {u"context"_s, json(serverContext(context))},
        {u"vocabulary"_s, json(array(vocabulary))},
    };
    return decoded(send(u"dictation"_s, form, audioFile), Dictated::decode);
}

Task<Commanded> ServerClient::command(const QString &selection, const Instruction &instruction,
                                      const std::optional<FocusContext> &context,
                                      const QStringList &vocabulary) const
{
    MultipartBody::Fields form = {
        {u"selection"_s, selection},
        {u"context"_s, json(serverContext(context))},
        {u"vocabulary"_s, json(array(vocabulary))},
    };
    std::optional<QString> audioFile;
    if (const auto *typed = std::get_if<TypedInstruction>(&instruction)) {
        form.append({u"instruction"_s, typed->text});
    } else {
        audioFile = std::get<SpokenInstruction>(instruction).audioFile;
    }
    return decoded(send(u"command"_s, form, audioFile), Commanded::decode);
}

Task<NoteSummary> ServerClient::noteSummary(const NoteMaterial &note, const QStringList &vocabulary) const
{
    const QJsonObject json = {{u"note"_s, object(note)}, {u"vocabulary"_s, array(vocabulary)}};
    return decoded(send(u"notes/summary"_s, HttpMethod::post, json, 120s), NoteSummary::decode);
}

Task<QString> ServerClient::noteAnswer(const QString &question, const NoteMaterial &note,
                                       std::chrono::duration<double> elapsed,
                                       const QStringList &vocabulary) const
{
    Q_ASSERT(std::isfinite(elapsed.count()));
    const bool hasMissed = question == MissedQuestion;
    const QJsonObject json = {
        {u"question"_s, hasMissed ? QJsonValue(QJsonValue::Undefined) : QJsonValue(question)},
        {u"note"_s, object(note)},
        {u"elapsed_seconds"_s, static_cast<qint64>(elapsed.count())},
        {u"missed"_s, hasMissed},
        {u"vocabulary"_s, array(vocabulary)},
    };
    return decoded(send(u"notes/ask"_s, HttpMethod::post, json, 120s), decodeAnswer);
}

Task<QString> ServerClient::notesAnswer(const QString &question, const QList<NoteMaterial> &notes,
                                        const QStringList &vocabulary) const
{
    QJsonArray all;
    for (const NoteMaterial &note : notes) {
        all.append(object(note));
    }
    const QJsonObject json = {
        {u"question"_s, question},
        {u"notes"_s, all},
        {u"vocabulary"_s, array(vocabulary)},
    };
    return decoded(send(u"notes/ask-all"_s, HttpMethod::post, json, 120s), decodeAnswer);
}

Task<Started> ServerClient::startSignIn(const QString &email) const
{
    const QJsonObject device = {{u"id"_s, m_connection->deviceID()}, {u"name"_s, m_connection->deviceName()}};
    const QJsonObject json = {{u"email"_s, email}, {u"device"_s, device}};
    return decoded(send(u"auth/start"_s, HttpMethod::post, json, 30s), Started::decode);
}

Task<Poll> ServerClient::poll(const QString &request) const
{
    const QJsonObject json = {{u"request"_s, request}};
    return decoded(send(u"auth/poll"_s, HttpMethod::post, json, 30s), Poll::decode);
}

Task<> ServerClient::signOut() const
{
    return finished(send(u"auth/sign-out"_s, HttpMethod::post, std::nullopt, 30s));
}

Task<Account> ServerClient::account() const
{
    return decoded(send(u"account"_s, HttpMethod::get, std::nullopt, 30s), Account::decode);
}

} // namespace vesk
