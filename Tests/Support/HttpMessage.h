#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>

#include <chrono>
#include <optional>
#include <utility>
#include <vector>

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

    /// The parts of an upload, read by the letter of RFC 7578; nothing for a body that breaks it anywhere.
    std::optional<std::vector<MultipartPart>> parts() const;
};

struct HttpAnswer {
    int status = 200;
    QByteArray body;
    HttpHeaders headers; ///< Content-Type and Content-Length are added where missing
};

/// Takes the first complete request from the buffer's front; nothing while it is incomplete.
std::optional<ReceivedRequest> takeRequest(QByteArray &buffer);

} // namespace vesk
