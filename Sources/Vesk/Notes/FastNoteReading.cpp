#include "Notes/FastNoteReading.h"

#include "Foundation/JsonEscapes.h"
#include "Foundation/JsonScanner.h"
#include "Notes/NoteShape.h"

#include <cstring>
#include <simdjson.h>

namespace vesk {

namespace {

namespace ondemand = simdjson::ondemand;

/// A member's name where it stands in the document. One that is spelled with an escape is a strange one here,
/// and the strict reading looks again.
struct Name {
    const char *spelled;

    bool is(std::string_view name) const
    {
        // With a length that the compiler knows, comparing is an instruction and not a call. The padding
        // behind the document is longer than any name.
        switch (name.size()) {
        case 4: return isSame<4>(name);
        case 5: return isSame<5>(name);
        case 6: return isSame<6>(name);
        default: return std::memcmp(spelled, name.data(), name.size()) == 0 && spelled[name.size()] == '"';
        }
    }

private:
    template <std::size_t Length>
    bool isSame(std::string_view name) const
    {
        return std::memcmp(spelled, name.data(), Length) == 0 && spelled[Length] == '"';
    }
};

/// What the values of one document share.
class Document {
public:
    Document(QByteArrayView json, QByteArray &buffer)
        : m_end(json.end())
        , m_nextEscape(json.begin() - 1)
        , m_buffer(buffer)
    {
    }

    /// Whether a string has an escape. Strings are asked about in their order, so that one search over the
    /// document serves them all.
    bool hasEscape(QByteArrayView spelled)
    {
        if (m_nextEscape < spelled.begin()) {
            const auto rest = static_cast<std::size_t>(m_end - spelled.begin());
            const auto *found = static_cast<const char *>(std::memchr(spelled.begin(), '\\', rest));
            m_nextEscape = found != nullptr ? found : m_end;
        }
        return m_nextEscape < spelled.end();
    }

    QByteArray &buffer() { return m_buffer; }

private:
    const char *m_end;
    const char *m_nextEscape; // none stands between the strings asked about and this
    QByteArray &m_buffer;     // for strings that have escapes
};

class ParsedValue {
public:
    ParsedValue(ondemand::value value, Document &document)
        : m_value(value)
        , m_document(&document)
    {
    }

    /// The library reads over a value by counting brackets; whether it is JSON it would not notice.
    static bool skip() { return false; }

    bool text(NoteVisitor &visitor, NoteVisitor::Field field)
    {
        const std::optional<QByteArrayView> spelled = string();
        if (!spelled) {
            return false;
        }
        if (!m_document->hasEscape(*spelled)) {
            visitor.text(field, *spelled, true);
            return true;
        }
        return decode(*spelled, m_document->buffer())
            && (visitor.text(field, m_document->buffer(), true), true);
    }

    std::optional<QByteArrayView> shortText(QByteArray &buffer)
    {
        const std::optional<QByteArrayView> spelled = string();
        if (!spelled || !m_document->hasEscape(*spelled)) {
            return spelled;
        }
        return decode(*spelled, buffer) ? std::optional<QByteArrayView>(buffer) : std::nullopt;
    }

    bool number(double &into) { return m_value.get_double().get(into) == simdjson::SUCCESS; }

    template <typename Read>
    bool forEachMember(const Read &read)
    {
        ondemand::object object;
        if (m_value.get_object().get(object) != simdjson::SUCCESS) {
            return false;
        }
        for (auto found : object) {
            ondemand::field field;
            if (std::move(found).get(field) != simdjson::SUCCESS) {
                return false;
            }
            // A key with an escape in it is a strange one here, and the strict reading looks again.
            if (!read(Name{field.key().raw()}, ParsedValue(field.value(), *m_document))) {
                return false;
            }
        }
        return true;
    }

    template <typename Read>
    bool forEachElement(const Read &read)
    {
        ondemand::array array;
        if (m_value.get_array().get(array) != simdjson::SUCCESS) {
            return false;
        }
        for (auto found : array) {
            ondemand::value value;
            if (std::move(found).get(value) != simdjson::SUCCESS || !read(ParsedValue(value, *m_document))) {
                return false;
            }
        }
        return true;
    }

private:
    /// The string's inside as it is spelled. The token reaches to the next one, white space included. The
    /// string is consumed as well: over a value that was not, the library steps as if it might be a key.
    std::optional<QByteArrayView> string()
    {
        std::string_view token = m_value.raw_json_token();
        while (!token.empty() && static_cast<unsigned char>(token.back()) <= ' ') {
            token.remove_suffix(1);
        }
        ondemand::raw_json_string consumed;
        if (token.size() < 2 || token.back() != '"'
            || m_value.get_raw_json_string().get(consumed) != simdjson::SUCCESS) {
            return std::nullopt;
        }
        return QByteArrayView(consumed.raw(), static_cast<qsizetype>(token.size() - 2));
    }

    /// Strings with escapes are rare, and the scanner knows what may be escaped how.
    static bool decode(QByteArrayView spelled, QByteArray &into)
    {
        try {
            JsonScanner scanner(QByteArrayView(spelled.data() - 1, spelled.size() + 2));
            scanner.next();
        } catch (const DecodingError &) { // half of a surrogate pair, a strange escape
            return false;
        }
        into.resize(0);
        Json::unescape(spelled, into);
        return true;
    }

    ondemand::value m_value;
    Document *m_document;
};

} // namespace

struct FastNoteReading::Parser {
    ondemand::parser parser;
    QByteArray buffer;
};

FastNoteReading::FastNoteReading()
    : m_parser(std::make_unique<Parser>())
{
}

FastNoteReading::~FastNoteReading() = default;

qsizetype FastNoteReading::padding() { return simdjson::SIMDJSON_PADDING; }

bool FastNoteReading::read(QByteArrayView padded, NoteVisitor &visitor)
{
    visitor.begin();
    const auto size = static_cast<std::size_t>(padded.size());
    ondemand::document document;
    ondemand::value root;
    if (m_parser->parser.iterate(padded.data(), size, size + simdjson::SIMDJSON_PADDING).get(document)
            != simdjson::SUCCESS
        || document.get_value().get(root) != simdjson::SUCCESS) {
        return false;
    }
    Document shared(padded, m_parser->buffer);
    return NoteShape<ParsedValue>(visitor).readNote({root, shared})
        && document.current_location().error() == simdjson::OUT_OF_BOUNDS;
}

} // namespace vesk
