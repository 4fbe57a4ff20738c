#include "MCP/MCPServer.h"

#include "Foundation/Descriptor.h"
#include "Foundation/Text.h"
#include "MCP/LineReader.h"
#include "MCP/Refusal.h"
#include "MCP/ToolList.h"

#include <QJsonDocument>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

enum ErrorCode {
    parseError = -32700,
    invalidRequest = -32600,
    methodNotFound = -32601,
    invalidParams = -32602
};

constexpr QByteArrayView NoId = "null";

// The id is laid in as it came: a client may use numbers that no number type of ours holds.
QByteArray message(QByteArrayView id, QByteArrayView member, const QJsonObject &content)
{
    return "{\"jsonrpc\":\"2.0\",\"id\":" + id.toByteArray() + ",\"" + member.toByteArray()
        + "\":" + Json::compact(content) + '}';
}

QByteArray success(QByteArrayView id, const QJsonObject &result) { return message(id, "result", result); }

QByteArray failure(QByteArrayView id, ErrorCode code, const QString &text)
{
    return message(id, "error", {{u"code"_s, code}, {u"message"_s, text}});
}

QByteArray invalidRequestFrom(QByteArrayView id) { return failure(id, invalidRequest, u"Invalid Request"_s); }

bool isObject(const std::optional<JsonView> &value)
{
    return value && value->kind() == JsonView::Kind::object;
}

std::optional<JsonView> memberOf(const std::optional<JsonView> &object, QStringView name)
{
    return object ? object->member(name) : std::nullopt;
}

QString textOr(const std::optional<JsonView> &value, const QString &otherwise)
{
    return value ? value->text().value_or(otherwise) : otherwise;
}

qint64 integerOr(const std::optional<JsonView> &value, qint64 otherwise)
{
    return value ? value->integer().value_or(otherwise) : otherwise;
}

/// For people and models to read: on several lines, members sorted.
QString readable(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Indented)).trimmed();
}

QJsonObject toolResult(const QString &text, bool isError)
{
    return {
        {u"content"_s, QJsonArray{QJsonObject{{u"type"_s, u"text"_s}, {u"text"_s, text}}}},
        {u"isError"_s, isError},
    };
}

bool isBlank(QByteArrayView line)
{
    const auto isAsciiText = [](char c) { return c > ' '; };
    return std::none_of(line.begin(), line.end(), isAsciiText) && QString::fromUtf8(line).trimmed().isEmpty();
}

int failed(QStringView what, int errorNumber)
{
    writeAll(STDERR_FILENO,
             QString(u"vesk mcp: the " + what + u": " + Text::systemReason(errorNumber) + u'\n').toUtf8());
    return EXIT_FAILURE;
}

} // namespace

int MCPServer::run(int input, int output)
{
    writeAll(STDERR_FILENO, QString(u"vesk mcp: serving " + m_tools.folder() + u'\n').toUtf8());
    LineReader lines(input);
    while (const auto line = lines.next()) {
        if (isBlank(line->bytes) && !line->isTooLong) {
            continue;
        }
        std::optional<QByteArray> answer =
            line->isTooLong ? failure(NoId, parseError, u"Parse error"_s) : reply(line->bytes);
        if (!answer) {
            continue;
        }
        if (const int error = writeAll(output, *answer += '\n'); error != 0) {
            return failed(u"output cannot be written", error);
        }
    }
    const int error = lines.errorNumber();
    return error == 0 ? EXIT_SUCCESS : failed(u"input cannot be read", error);
}

std::optional<QByteArray> MCPServer::reply(QByteArrayView line) const
{
    try {
        const JsonView message = JsonView::parse(line);
        if (message.kind() != JsonView::Kind::array) {
            return answer(message);
        }
        const std::vector<JsonView> batch = message.elements();
        if (batch.empty()) {
            return invalidRequestFrom(NoId);
        }
        QByteArray replies;
        for (const JsonView &element : batch) {
            if (const auto one = answer(element)) {
                replies += (replies.isEmpty() ? '[' : ',') + *one;
            }
        }
        return replies.isEmpty() ? std::nullopt : std::optional(QByteArray(replies + ']'));
    } catch (const DecodingError &) {
        return failure(NoId, parseError, u"Parse error"_s);
    }
}

std::optional<QByteArray> MCPServer::answer(const JsonView &message) const
{
    if (message.kind() != JsonView::Kind::object) {
        return invalidRequestFrom(NoId);
    }
    const std::optional<JsonView> id = message.member(u"id");
    const std::optional<QString> method =
        message.member(u"method").value_or(message).text(); // the message itself is no text
    if (!method) {
        // A client's answer to what was never asked.
        const bool isResponse = message.member(u"result") || message.member(u"error");
        return isResponse ? std::nullopt : std::optional(invalidRequestFrom(id ? id->raw() : NoId));
    }
    if (!id) { // a notification
        return std::nullopt;
    }
    std::optional<JsonView> params = message.member(u"params");
    if (!isObject(params)) {
        params.reset();
    }
    if (*method == "initialize"_L1) {
        return success(id->raw(), initialize(params));
    }
    if (*method == "ping"_L1) {
        return success(id->raw(), {});
    }
    if (*method == "tools/list"_L1) {
        return success(id->raw(), {{u"tools"_s, toolList()}});
    }
    if (*method == "tools/call"_L1) {
        return call(id->raw(), params);
    }
    return failure(id->raw(), methodNotFound, u"Method not found: " + *method);
}

QJsonObject MCPServer::initialize(const std::optional<JsonView> &params)
{
    const QString newest = u"2025-11-25"_s;
    const QStringList known = {newest, u"2025-06-18"_s, u"2025-03-26"_s, u"2024-11-05"_s};
    const QString wanted = textOr(memberOf(params, u"protocolVersion"), newest);
    return {
        {u"protocolVersion"_s, known.contains(wanted) ? wanted : newest},
        {u"capabilities"_s, QJsonObject{{u"tools"_s, QJsonObject{{u"listChanged"_s, false}}}}},
        {u"serverInfo"_s,
         QJsonObject{
             {u"name"_s, u"vesk"_s}, {u"title"_s, u"Vesk"_s}, {u"version"_s, QStringLiteral(VESK_VERSION)}}},
        {u"instructions"_s, serverInstructions()},
    };
}

QByteArray MCPServer::call(QByteArrayView id, const std::optional<JsonView> &params) const
{
    constexpr qint64 ListedNotes = 20;
    constexpr qint64 FoundNotes = 10;
    const QString name = textOr(memberOf(params, u"name"), {});
    const std::optional<JsonView> arguments = memberOf(params, u"arguments");
    try {
        const std::optional<JsonView> limit = memberOf(arguments, u"limit");
        if (name == "list_notes"_L1) {
            return success(id, toolResult(readable(m_tools.listNotes(integerOr(limit, ListedNotes))), false));
        }
        if (name == "search_notes"_L1) {
            const QString query = textOr(memberOf(arguments, u"query"), {});
            return success(
                id, toolResult(readable(m_tools.searchNotes(query, integerOr(limit, FoundNotes))), false));
        }
        if (name == "get_note"_L1) {
            const QString note = textOr(memberOf(arguments, u"id"), {});
            const qint64 part = integerOr(memberOf(arguments, u"part"), 1);
            return success(id, toolResult(m_tools.getNote(note, part), false));
        }
    } catch (const std::exception &error) { // also no memory for a note: the next request may do
        return success(id, toolResult(describe(error), true));
    }
    return failure(id, invalidParams, u"Unknown tool: " + name);
}

int serveNotes()
{
    // A service manager or shell may have left these otherwise; a server that cannot be ended is none.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGTERM, SIG_DFL);
    // Only messages may reach the client, so nothing else gets the descriptor.
    const Descriptor output(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    return MCPServer(Note::folder()).run(STDIN_FILENO, output.number());
}

} // namespace vesk
