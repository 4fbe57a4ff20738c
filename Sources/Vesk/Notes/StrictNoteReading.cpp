#include "Notes/StrictNoteReading.h"

#include "Foundation/JsonEscapes.h"
#include "Notes/NoteShape.h"

#include <cmath>
#include <cstdlib>
#include <locale.h>

namespace vesk {

namespace {

using Token = JsonScanner::Token;

struct Name {
    std::string_view spelled;

    bool is(std::string_view name) const { return spelled == name; }
};

/// A value whose first token the scanner has returned.
class ScannedValue {
public:
    ScannedValue(JsonScanner &scanner, Token first)
        : m_scanner(&scanner)
        , m_first(first)
    {
    }

    bool skip()
    {
        m_scanner->skipRest(m_first);
        return true;
    }

    bool text(NoteVisitor &visitor, NoteVisitor::Field field)
    {
        if (m_first != Token::text) {
            return false;
        }
        QByteArray decoded;
        while (true) {
            const bool isLast = m_scanner->isLastPiece();
            decoded.resize(0);
            Json::unescape(m_scanner->raw(), decoded);
            visitor.text(field, decoded, isLast);
            if (isLast) {
                return true;
            }
            m_scanner->next();
        }
    }

    std::optional<QByteArrayView> shortText(QByteArray &buffer)
    {
        constexpr qsizetype Longest = 64; // an identity has 36 characters
        if (m_first != Token::text) {
            return std::nullopt;
        }
        buffer.resize(0);
        while (true) {
            const bool isLast = m_scanner->isLastPiece();
            Json::unescape(m_scanner->raw(), buffer);
            if (isLast || buffer.size() > Longest) {
                return isLast ? std::optional<QByteArrayView>(buffer) : std::nullopt;
            }
            m_scanner->next();
        }
    }

    bool number(double &into)
    {
        if (m_first != Token::number) {
            return false;
        }
        // Not Qt's: it tells a number too small for a double, which is nought, from one too large, which is
        // none, by nothing. In a locale of its own, because the program's may have decimal commas.
        static const locale_t plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
        into = ::strtod_l(m_scanner->raw().toByteArray().constData(), nullptr, plain);
        return std::isfinite(into);
    }

    template <typename Read>
    bool forEachMember(const Read &read)
    {
        if (m_first != Token::objectBegin) {
            return false;
        }
        QByteArray name;
        while (m_scanner->next() == Token::key) {
            name.resize(0);
            Json::unescape(m_scanner->raw(), name);
            const Token first = m_scanner->next();
            if (!read(Name{{name.data(), static_cast<std::size_t>(name.size())}},
                      ScannedValue(*m_scanner, first))) {
                return false;
            }
        }
        return true;
    }

    template <typename Read>
    bool forEachElement(const Read &read)
    {
        if (m_first != Token::arrayBegin) {
            return false;
        }
        for (Token first = m_scanner->next(); first != Token::arrayEnd; first = m_scanner->next()) {
            if (!read(ScannedValue(*m_scanner, first))) {
                return false;
            }
        }
        return true;
    }

private:
    JsonScanner *m_scanner;
    Token m_first;
};

} // namespace

bool readNoteStrictly(JsonScanner &scanner, NoteVisitor &visitor)
{
    visitor.begin();
    try {
        const Token first = scanner.next();
        return NoteShape<ScannedValue>(visitor).readNote({scanner, first}) && scanner.next() == Token::end;
    } catch (const DecodingError &) { // not JSON, so not a note
        return false;
    }
}

} // namespace vesk
