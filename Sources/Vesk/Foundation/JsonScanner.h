#pragma once

#include "Foundation/Json.h"

#include <functional>
#include <vector>

namespace vesk {

/// Reads JSON strictly from its beginning to its end, one token at a time, in memory that does not grow with
/// the document: only a window of it need be there. For what the tree of Qt cannot do: documents of any
/// length, numbers and strings as they were spelled, no limit but depth. A pure function of its bytes; no
/// thread of its own. After a DecodingError it may not be asked again.
class JsonScanner {
public:
    enum class Token {
        objectBegin,
        objectEnd,
        arrayBegin,
        arrayEnd,
        key,    ///< a member's name; raw() is whole
        text,   ///< a string, or a stretch of a long one (see isLastPiece())
        number, ///< raw() is whole
        boolean,
        null,
        end, ///< of the document
    };

    /// Fills up to `capacity` bytes and returns how many; 0 at the end. What it throws comes out of next().
    using Source = std::function<qsizetype(char *into, qsizetype capacity)>;

    /// Deep enough for what people write, far below what would exhaust a stack.
    static constexpr int DepthLimit = 512;

    /// Over a document in memory, which must outlive the scanner. Strings come in one piece.
    explicit JsonScanner(QByteArrayView document);

    /// Over a document that is read as it is needed, through a window of `windowSize` bytes. Keys and numbers
    /// longer than that are refused.
    JsonScanner(Source source, qsizetype windowSize);

    /// The next token. Throws DecodingError for anything that is not JSON in UTF-8: also for half of a
    /// surrogate pair, for depth beyond DepthLimit, and for a second value.
    Token next();

    /// The token as it is spelled: without the quotation marks, escapes in place. Valid until next().
    QByteArrayView raw() const { return {m_begin, m_tokenEnd - m_begin}; }

    /// Whether the text ends with this piece. Pieces end between characters and between escapes.
    bool isLastPiece() const { return !m_isInsideText; }

    /// How many objects and arrays are open.
    qsizetype depth() const { return static_cast<qsizetype>(m_isObject.size()); }

    /// Reads over the value whose first token was just returned.
    void skipRest(Token first);

private:
    enum class Expect { value, valueOrEnd, key, keyOrEnd, commaOrEnd, nothing };

    [[noreturn]] static void fail();
    bool isAvailable(qsizetype count);
    bool refill();
    void skipWhiteSpace();
    Token finish(Token token);
    Token open(bool isObject);
    Token close(char bracket);
    Token value(char first);
    Token keyAndColon();
    Token number();
    Token word(QByteArrayView spelled, Token token);
    Token textPiece();
    bool skipEscape();
    void skipDigits();

    Source m_source; // empty over a document in memory
    QByteArray m_window;
    const char *m_begin = nullptr; // of the current token; nothing before it is kept
    const char *m_tokenEnd = nullptr;
    const char *m_at = nullptr;
    const char *m_end = nullptr;
    std::vector<bool> m_isObject; // for each open level
    Expect m_expect = Expect::value;
    bool m_isInsideText = false;
};

} // namespace vesk
