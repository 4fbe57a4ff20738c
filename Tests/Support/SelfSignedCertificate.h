#pragma once

#include <QSslCertificate>
#include <QSslKey>

namespace vesk {

struct SelfSignedCertificate {
    QSslCertificate certificate;
    QSslKey key;
};

/// A fresh certificate for 127.0.0.1 that nobody has signed, made by the openssl program. Throws
/// std::runtime_error with the program's words.
SelfSignedCertificate makeSelfSignedCertificate();

} // namespace vesk
