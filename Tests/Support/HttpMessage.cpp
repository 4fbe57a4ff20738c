#include "Support/VeskServer.h"

#include <QJsonDocument>

namespace vesk {

namespace {

HttpHeaders parseHeaders(const QByteArray &lines)
{
    HttpHeaders headers;
    qsizetype start = 0;
    while (start < lines.size()) {
        qsizetype end = lines.indexOf("\r\n", start);
        end = end < 0 ? lines.size() : end;
        const QByteArray line = lines.mid(start, end - start);
        const qsizetype colon = line.indexOf(':');
        headers.emplaceBack(line.left(colon), line.mid(colon + 1).trimmed());
        start = end + 2;
    }
    return headers;
}

/// The quoted value of a parameter: name="value".
QByteArray parameter(const QByteArray &value, const QByteArray &name)
{
    const QByteArray opening = "; " + name + "=\"";
    const qsizetype start = value.indexOf(opening);
    if (start < 0) {
        return {};
    }
    const qsizetype from = start + opening.size();
    return value.mid(from, value.indexOf('"', from) - from);
}

MultipartPart parsePart(const QByteArray &bytes)
{
    const qsizetype blank = bytes.indexOf("\r\n\r\n");
    const HttpHeaders headers = parseHeaders(bytes.left(blank));
    const QByteArray disposition = header(headers, "Content-Disposition").value_or(QByteArray());
    return {parameter(disposition, "name"), parameter(disposition, "filename"),
            header(headers, "Content-Type").value_or(QByteArray()), bytes.mid(blank + 4)};
}

} // namespace

std::optional<QByteArray> header(const HttpHeaders &headers, QByteArrayView name)
{
    for (const auto &[key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0) {
            return value;
        }
    }
    return std::nullopt;
}

QJsonObject ReceivedRequest::json() const { return QJsonDocument::fromJson(body).object(); }

std::optional<std::vector<MultipartPart>> ReceivedRequest::parts() const
{
    const QByteArray type = header(headers, "Content-Type").value_or(QByteArray());
    const QByteArray prefix = "multipart/form-data; boundary=";
    if (!type.startsWith(prefix)) {
        return std::nullopt;
    }
    const QByteArray delimiter = "\r\n--" + type.mid(prefix.size()) + "\r\n";
    const QByteArray end = delimiter.chopped(2) + "--\r\n";
    const QByteArray bytes = "\r\n" + body; // so that the first delimiter looks like the others
    if (!bytes.startsWith(delimiter) || !bytes.endsWith(end)) {
        return std::nullopt;
    }
    std::vector<MultipartPart> parts;
    for (qsizetype at = 0, next = 0; next >= 0; at = next) {
        next = bytes.indexOf(delimiter, at + 1);
        const qsizetype from = at + delimiter.size();
        const qsizetype to = next >= 0 ? next : bytes.size() - end.size();
        parts.push_back(parsePart(bytes.mid(from, to - from)));
    }
    return parts;
}

std::optional<ReceivedRequest> takeRequest(QByteArray &buffer)
{
    const qsizetype blank = buffer.indexOf("\r\n\r\n");
    if (blank < 0) {
        return std::nullopt;
    }
    const qsizetype firstLine = buffer.indexOf("\r\n");
    const QList<QByteArray> words = buffer.left(firstLine).split(' ');
    ReceivedRequest request;
    request.method = words.value(0);
    request.target = words.value(1);
    request.headers = parseHeaders(buffer.mid(firstLine + 2, blank - firstLine - 2));
    const qsizetype length = header(request.headers, "Content-Length").value_or("0").toLongLong();
    if (buffer.size() < blank + 4 + length) {
        return std::nullopt;
    }
    request.body = buffer.mid(blank + 4, length);
    buffer.remove(0, blank + 4 + length);
    return request;
}

} // namespace vesk
