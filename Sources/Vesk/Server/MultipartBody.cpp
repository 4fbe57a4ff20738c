#include "Server/MultipartBody.h"

#include "Foundation/Files.h"

#include <QFileInfo>
#include <QUuid>

namespace vesk {

MultipartBody::MultipartBody(const Fields &fields, const std::optional<QString> &audioFile)
    : m_boundary(QUuid::createUuid().toByteArray(QUuid::WithoutBraces).toUpper())
{
    for (const auto &[name, value] : fields) {
        addText(name, value);
    }
    if (audioFile) {
        addAudio(*audioFile);
    }
    m_bytes += "--" + m_boundary + "--\r\n";
}

// Field names are this program's own words, so nothing in them needs escaping.
void MultipartBody::addText(const QString &name, const QString &value)
{
    m_bytes += "--" + m_boundary + "\r\nContent-Disposition: form-data; name=\"" + name.toUtf8()
        + "\"\r\n\r\n" + value.toUtf8() + "\r\n";
}

void MultipartBody::addAudio(const QString &file)
{
    const bool isWave = QFileInfo(file).suffix().compare(u"wav", Qt::CaseInsensitive) == 0;
    m_bytes += "--" + m_boundary + "\r\nContent-Disposition: form-data; name=\"audio\"; filename=\"dictation."
        + (isWave ? "wav" : "m4a") + "\"\r\nContent-Type: " + (isWave ? "audio/wav" : "audio/mp4")
        + "\r\n\r\n" + Files::read(file) + "\r\n";
}

} // namespace vesk
