#pragma once

#include "Support/VeskServer.h"

class QTcpSocket;

namespace vesk {

/// Sends the answer in the manner of the script, now or on the socket's event loop.
void sendAnswer(QTcpSocket &socket, Script script, HttpAnswer answer);

} // namespace vesk
