#pragma once

#include "Foundation/FocusContext.h"

#include <QJsonValue>

namespace vesk {

/// What the server is told about the field that the text is meant for. Undefined without a context: an
/// undefined member of a QJsonObject does not exist.
QJsonValue serverContext(const std::optional<FocusContext> &context);

} // namespace vesk
