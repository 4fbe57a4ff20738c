#pragma once

#include "Platform/Host.h"

namespace vesk {

/// The identifier under which the server knows this computer: 64 lower-case hexadecimal digits, the SHA-256
/// of "vesk-device:" and the platform's identifier ("unknown" without one). The same for every user of the
/// machine, and silent about the identifier it was made from.
QString deviceID(const Host &host);

} // namespace vesk
