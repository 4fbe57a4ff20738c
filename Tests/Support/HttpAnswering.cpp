#include "Support/HttpAnswering.h"

#include <QTcpSocket>
#include <QTimer>

#include <memory>

namespace vesk {

namespace {

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

} // namespace

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

} // namespace vesk
