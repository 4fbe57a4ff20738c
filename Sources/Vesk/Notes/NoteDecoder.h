#pragma once

#include "Notes/NoteVisitor.h"

namespace vesk {

/// Collects a whole note in memory.
class NoteDecoder final : public NoteVisitor {
public:
    void begin() override;
    void id(const QUuid &id) override { m_note.id = id; }
    void created(ReferenceDate created) override { m_note.created = created; }
    void duration(double seconds) override { m_note.duration = seconds; }
    void text(Field field, QByteArrayView utf8, bool isLast) override;
    void segment(double start, Note::Source source) override;
    void exchange(const QUuid &id) override;

    /// After the reader has said that it was a note.
    Note takeNote();

private:
    QString &target(Field field);

    Note m_note{QUuid(), {}, {}, 0, {}, {}, {}, {}};
    QString m_segment;
    QString m_question;
    QString m_answer;
};

} // namespace vesk
