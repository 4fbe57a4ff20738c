#pragma once

#include "Notes/NoteVisitor.h"

#include <array>
#include <optional>
#include <string_view>

namespace vesk {

/// What makes a JSON value a note: every member there once and of its type; strange members do not matter.
/// Written once for both of the note's readers, which differ in how they walk over JSON. A `Value` can be
/// asked one thing, once:
///
// clang-format off
///     bool skip()                              reads over it
///     bool text(NoteVisitor &, Field)          hands on a string
///     optional<view> shortText(QByteArray &)   a string that is short in every note; the buffer is for its use
///     bool number(double &into)
///     bool forEachMember(bool (name, Value))   an object
///     bool forEachElement(bool (Value))        an array
// clang-format on
///
/// each false when it is not that, or when what it calls says false.
template <typename Value>
class NoteShape {
public:
    explicit NoteShape(NoteVisitor &visitor)
        : m_visitor(visitor)
    {
    }

    bool readNote(Value value)
    {
        using namespace std::string_view_literals;
        static constexpr std::array Names = {"created"sv,  "duration"sv, "exchanges"sv, "id"sv,
                                             "segments"sv, "summary"sv,  "thoughts"sv,  "title"sv};
        const auto exchange = [this](Value element) { return readExchange(std::move(element)); };
        const auto segment = [this](Value element) { return readSegment(std::move(element)); };
        double number = 0;
        return readObject(std::move(value), Names, [&](std::size_t member, Value of) {
            switch (member) {
            case 0: return of.number(number) && (m_visitor.created({number}), true);
            case 1: return of.number(number) && (m_visitor.duration(number), true);
            case 2: return of.forEachElement(exchange);
            case 3: return readIdentity(of) && (m_visitor.id(m_identity), true);
            case 4: return of.forEachElement(segment);
            case 5: return of.text(m_visitor, NoteVisitor::Field::summary);
            case 6: return of.text(m_visitor, NoteVisitor::Field::thoughts);
            default: return of.text(m_visitor, NoteVisitor::Field::title);
            }
        });
    }

private:
    template <std::size_t Size, typename Read>
    static bool readObject(Value value, const std::array<std::string_view, Size> &names, const Read &read)
    {
        constexpr unsigned All = (1U << Size) - 1;
        unsigned seen = 0;
        std::size_t guess = 0; // members nearly always come in their order
        const bool isRead = value.forEachMember([&](const auto &name, Value of) {
            for (std::size_t tried = 0; tried < Size; ++tried) {
                const std::size_t member = (guess + tried) % Size;
                if (name.is(names[member])) {
                    const bool isNew = (seen & (1U << member)) == 0;
                    seen |= 1U << member;
                    guess = member + 1;
                    return isNew && read(member, std::move(of));
                }
            }
            return of.skip();
        });
        return isRead && seen == All;
    }

    bool readSegment(Value value)
    {
        using namespace std::string_view_literals;
        static constexpr std::array Names = {"source"sv, "start"sv, "text"sv};
        double start = 0;
        Note::Source source = Note::Source::me;
        const bool isRead = readObject(std::move(value), Names, [&](std::size_t member, Value of) {
            switch (member) {
            case 0: return readSource(of, source);
            case 1: return of.number(start);
            default: return of.text(m_visitor, NoteVisitor::Field::segment);
            }
        });
        return isRead && (m_visitor.segment(start, source), true);
    }

    bool readExchange(Value value)
    {
        using namespace std::string_view_literals;
        static constexpr std::array Names = {"answer"sv, "id"sv, "question"sv};
        const bool isRead = readObject(std::move(value), Names, [&](std::size_t member, Value of) {
            switch (member) {
            case 0: return of.text(m_visitor, NoteVisitor::Field::answer);
            case 1: return readIdentity(of);
            default: return of.text(m_visitor, NoteVisitor::Field::question);
            }
        });
        return isRead && (m_visitor.exchange(m_identity), true);
    }

    bool readIdentity(Value &value)
    {
        const std::optional<QByteArrayView> text = value.shortText(m_buffer);
        const auto identity = text ? Note::identity(QLatin1StringView(*text)) : std::nullopt;
        m_identity = identity.value_or(QUuid());
        return identity.has_value();
    }

    bool readSource(Value &value, Note::Source &source)
    {
        const std::optional<QByteArrayView> text = value.shortText(m_buffer);
        const std::string_view name(text ? text->data() : nullptr,
                                    text ? static_cast<std::size_t>(text->size()) : 0);
        source = name == "me" ? Note::Source::me : Note::Source::them;
        return name == "me" || name == "them";
    }

    NoteVisitor &m_visitor;
    QByteArray m_buffer;
    QUuid m_identity;
};

} // namespace vesk
