#include "MCP/NoteHeading.h"

#include "Foundation/Text.h"

namespace vesk {

using namespace Qt::StringLiterals;

QJsonObject NoteHeading::json() const
{
    return {
        {u"id"_s, Note::identifier(id)},
        {u"title"_s, Note::displayTitle(title)},
        {u"date"_s, date()},
        {u"length"_s, Note::length(duration)},
    };
}

void HeadingVisitor::text(Field field, QByteArrayView utf8, bool /*isLast*/)
{
    if (field == Field::title) {
        Text::appendUtf8(utf8, m_heading.title);
    }
}

} // namespace vesk
