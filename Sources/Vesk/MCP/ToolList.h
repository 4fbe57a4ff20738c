#pragma once

#include <QJsonArray>

namespace vesk {

/// What the server tells a client about its tools, and about itself.
const QJsonArray &toolList();

const QString &serverInstructions();

} // namespace vesk
