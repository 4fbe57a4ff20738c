#pragma once

#include "Notes/Note.h"

namespace vesk {

/// Is told what stands in a note's file while it is read, in the file's order, so that a reader can search a
/// note that does not fit into memory. Only when the whole file has been read is it known to be a note: until
/// then everything told is provisional, and begin() takes it back.
class NoteVisitor {
public:
    enum class Field { title, summary, thoughts, segment, question, answer };

    virtual ~NoteVisitor() = default;

    /// Another file, or the same one from its beginning.
    virtual void begin() = 0;

    virtual void id(const QUuid & /*id*/) {}
    virtual void created(ReferenceDate /*created*/) {}
    virtual void duration(double /*seconds*/) {}

    /// A text in UTF-8, or a stretch of a long one: whole code points, `isLast` with the last stretch. Valid
    /// during the call.
    virtual void text(Field /*field*/, QByteArrayView /*utf8*/, bool /*isLast*/) {}

    /// After a segment's text.
    virtual void segment(double /*start*/, Note::Source /*source*/) {}
    /// After an exchange's question and answer.
    virtual void exchange(const QUuid & /*id*/) {}
};

} // namespace vesk
