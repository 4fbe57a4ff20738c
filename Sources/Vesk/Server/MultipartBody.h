#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>
#include <utility>

namespace vesk {

/// The body of an upload: text fields and, last, a recording. A plain value with a boundary of its own.
class MultipartBody {
public:
    using Fields = QList<std::pair<QString, QString>>;

    /// Reads the recording whole. Throws FileError when it cannot be read.
    MultipartBody(const Fields &fields, const std::optional<QString> &audioFile);

    const QByteArray &bytes() const { return m_bytes; }
    QByteArray contentType() const { return "multipart/form-data; boundary=" + m_boundary; }

private:
    void addText(const QString &name, const QString &value);
    void addAudio(const QString &file);

    QByteArray m_boundary;
    QByteArray m_bytes;
};

} // namespace vesk
