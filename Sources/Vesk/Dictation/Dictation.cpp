#include "Dictation/Dictation.h"

#include "Foundation/Json.h"
#include "Foundation/ReferenceDate.h"

#include <QTimeZone>

#include <cmath>

namespace vesk {

using namespace Qt::StringLiterals;

QByteArray Dictation::encode() const
{
    return Json::compact(QJsonObject{
        {u"id"_s, id.toString(QUuid::WithoutBraces).toUpper()},
        {u"date"_s, static_cast<double>(date.toMSecsSinceEpoch()) / 1000 - ReferenceDate::Epoch},
        {u"kind"_s, kind},
        {u"appName"_s, appName},
        {u"raw"_s, raw},
        {u"text"_s, text},
        {u"seconds"_s, seconds},
    });
}

Dictation Dictation::decode(const QByteArray &line)
{
    const JsonReader reader(Json::object(line));
    Dictation dictation;
    dictation.id = QUuid::fromString(reader.string("id"_L1));
    if (dictation.id.isNull()) {
        throw DecodingError(u"\"id\" is no UUID"_s);
    }
    const double milliseconds = (reader.number("date"_L1) + ReferenceDate::Epoch) * 1000;
    dictation.date = QDateTime::fromMSecsSinceEpoch(std::llround(milliseconds), Qt::UTC);
    dictation.kind = reader.string("kind"_L1);
    dictation.appName = reader.string("appName"_L1);
    dictation.raw = reader.string("raw"_L1);
    dictation.text = reader.string("text"_L1);
    dictation.seconds = reader.number("seconds"_L1);
    return dictation;
}

} // namespace vesk
