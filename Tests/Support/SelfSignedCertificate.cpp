#include "Support/SelfSignedCertificate.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <stdexcept>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

SelfSignedCertificate makeSelfSignedCertificate()
{
    const QTemporaryDir folder;
    const QString certificate = folder.filePath(u"certificate.pem"_s);
    const QString key = folder.filePath(u"key.pem"_s);
    QProcess openssl;
    openssl.setProcessChannelMode(QProcess::MergedChannels);
    openssl.start(u"openssl"_s,
                  {u"req"_s, u"-x509"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s, u"ec_paramgen_curve:P-256"_s,
                   u"-noenc"_s, u"-days"_s, u"2"_s, u"-subj"_s, u"/CN=127.0.0.1"_s, u"-addext"_s,
                   u"subjectAltName=IP:127.0.0.1"_s, u"-keyout"_s, key, u"-out"_s, certificate});
    openssl.waitForFinished();
    SelfSignedCertificate made = {QSslCertificate(content(certificate)), QSslKey(content(key), QSsl::Ec)};
    if (made.certificate.isNull() || made.key.isNull()) {
        const QString said = openssl.errorString() + u' ' + QString::fromLocal8Bit(openssl.readAll());
        throw std::runtime_error("no certificate for the test server: " + said.toStdString());
    }
    return made;
}

} // namespace vesk
