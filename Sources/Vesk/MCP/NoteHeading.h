#pragma once

#include "Notes/NoteVisitor.h"

#include <QJsonObject>

namespace vesk {

/// What a list shows of a note.
struct NoteHeading {
    QUuid id;
    QString title;
    ReferenceDate created;
    double duration = 0;

    /// "id", "title", "date" and "length" as the tools answer them.
    QJsonObject json() const;
    QString date() const { return created.iso8601(); }
};

/// Collects the heading; the base of what looks for more.
class HeadingVisitor : public NoteVisitor {
public:
    void begin() override { m_heading = {}; }
    void id(const QUuid &id) override { m_heading.id = id; }
    void created(ReferenceDate created) override { m_heading.created = created; }
    void duration(double seconds) override { m_heading.duration = seconds; }
    void text(Field field, QByteArrayView utf8, bool isLast) override;

    const NoteHeading &heading() const { return m_heading; }

private:
    NoteHeading m_heading;
};

} // namespace vesk
