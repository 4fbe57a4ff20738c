#include "Notes/NoteDecoder.h"

#include "Foundation/Text.h"

namespace vesk {

void NoteDecoder::begin()
{
    m_note = Note{QUuid(), {}, {}, 0, {}, {}, {}, {}};
    for (QString *text : {&m_segment, &m_question, &m_answer}) {
        text->clear();
    }
}

QString &NoteDecoder::target(Field field)
{
    switch (field) {
    case Field::title: return m_note.title;
    case Field::summary: return m_note.summary;
    case Field::thoughts: return m_note.thoughts;
    case Field::segment: return m_segment;
    case Field::question: return m_question;
    case Field::answer: return m_answer;
    }
    Q_UNREACHABLE();
}

void NoteDecoder::text(Field field, QByteArrayView utf8, bool isLast)
{
    QString &text = target(field);
    Text::appendUtf8(utf8, text);
    if (isLast) { // the application keeps it for as long as it runs
        text.squeeze();
    }
}

void NoteDecoder::segment(double start, Note::Source source)
{
    m_note.segments.append({start, source, std::exchange(m_segment, {})});
}

void NoteDecoder::exchange(const QUuid &id)
{
    m_note.exchanges.append({id, std::exchange(m_question, {}), std::exchange(m_answer, {})});
}

Note NoteDecoder::takeNote() { return std::move(m_note); }

} // namespace vesk
