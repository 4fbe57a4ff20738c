#include "Foundation/JsonScanner.h"

#include "Foundation/JsonEscapes.h"
#include "Foundation/Text.h"

#include <cstring>

namespace vesk {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

} // namespace

JsonScanner::JsonScanner(QByteArrayView document)
    : m_begin(document.data())
    , m_tokenEnd(m_begin)
    , m_at(m_begin)
    , m_end(m_begin + document.size())
{
}

JsonScanner::JsonScanner(Source source, qsizetype windowSize)
    : m_source(std::move(source))
    , m_window(windowSize, Qt::Uninitialized)
    , m_begin(m_window.constData())
    , m_tokenEnd(m_begin)
    , m_at(m_begin)
    , m_end(m_begin)
{
}

void JsonScanner::fail() { throw DecodingError(QStringLiteral("not valid JSON")); }

/// Moves what is still needed to the window's front and reads on behind it. False when there is no more, or
/// no room: the token fills the window.
bool JsonScanner::refill()
{
    if (!m_source) {
        return false;
    }
    char *front = m_window.data();
    const qsizetype kept = m_end - m_begin;
    std::memmove(front, m_begin, static_cast<size_t>(kept));
    m_at = front + (m_at - m_begin);
    m_tokenEnd = front + (m_tokenEnd - m_begin);
    m_begin = front;
    const qsizetype room = m_window.size() - kept;
    const qsizetype got = room > 0 ? m_source(front + kept, room) : 0;
    m_end = front + kept + got;
    return got > 0;
}

/// Whether that many bytes stand from m_at on, after reading more if need be.
bool JsonScanner::isAvailable(qsizetype count)
{
    while (m_end - m_at < count) {
        if (!refill()) {
            return false;
        }
    }
    return true;
}

void JsonScanner::skipWhiteSpace()
{
    while (isAvailable(1)) {
        if (*m_at != ' ' && *m_at != '\n' && *m_at != '\r' && *m_at != '\t') {
            return;
        }
        ++m_at;
        m_begin = m_tokenEnd = m_at;
    }
}

JsonScanner::Token JsonScanner::next()
{
    m_begin = m_tokenEnd = m_at;
    if (m_isInsideText) {
        return textPiece();
    }
    skipWhiteSpace();
    if (!isAvailable(1)) {
        return m_expect == Expect::nothing ? Token::end : (fail(), Token::end);
    }
    if (m_expect == Expect::commaOrEnd && *m_at == ',') {
        ++m_at;
        m_begin = m_at;
        m_expect = m_isObject.back() ? Expect::key : Expect::value;
        skipWhiteSpace();
        if (!isAvailable(1)) {
            fail();
        }
    }
    switch (m_expect) {
    case Expect::value: return value(*m_at);
    case Expect::valueOrEnd: return *m_at == ']' ? close(']') : value(*m_at);
    case Expect::key: return keyAndColon();
    case Expect::keyOrEnd: return *m_at == '}' ? close('}') : keyAndColon();
    case Expect::commaOrEnd: return close(*m_at);
    case Expect::nothing: fail();
    }
    Q_UNREACHABLE();
}

JsonScanner::Token JsonScanner::finish(Token token)
{
    m_tokenEnd = m_at;
    m_expect = m_isObject.empty() ? Expect::nothing : Expect::commaOrEnd;
    return token;
}

JsonScanner::Token JsonScanner::open(bool isObject)
{
    if (m_isObject.size() >= DepthLimit) {
        fail();
    }
    m_isObject.push_back(isObject);
    ++m_at;
    m_tokenEnd = m_at;
    m_expect = isObject ? Expect::keyOrEnd : Expect::valueOrEnd;
    return isObject ? Token::objectBegin : Token::arrayBegin;
}

JsonScanner::Token JsonScanner::close(char bracket)
{
    if (m_isObject.empty() || bracket != (m_isObject.back() ? '}' : ']')) {
        fail();
    }
    m_isObject.pop_back();
    ++m_at;
    return finish(bracket == '}' ? Token::objectEnd : Token::arrayEnd);
}

JsonScanner::Token JsonScanner::value(char first)
{
    switch (first) {
    case '{': return open(true);
    case '[': return open(false);
    case '"':
        ++m_at;
        m_begin = m_at;
        return textPiece();
    case 't': return word("true", Token::boolean);
    case 'f': return word("false", Token::boolean);
    case 'n': return word("null", Token::null);
    default: return number();
    }
}

JsonScanner::Token JsonScanner::keyAndColon()
{
    if (*m_at != '"') {
        fail();
    }
    ++m_at;
    m_begin = m_at;
    // A key comes whole: what of it has been read stays in the window while more is read.
    while (textPiece() != Token::text || m_isInsideText) {
        m_at = m_tokenEnd;
        if (!refill()) {
            fail();
        }
    }
    const qsizetype length = m_tokenEnd - m_begin;
    while (isAvailable(1) && (*m_at == ' ' || *m_at == '\n' || *m_at == '\r' || *m_at == '\t')) {
        ++m_at;
    }
    if (!isAvailable(1) || *m_at != ':') {
        fail();
    }
    ++m_at;
    m_tokenEnd = m_begin + length;
    m_expect = Expect::value;
    return Token::key;
}

JsonScanner::Token JsonScanner::word(QByteArrayView spelled, Token token)
{
    if (!isAvailable(spelled.size()) || QByteArrayView(m_at, spelled.size()) != spelled) {
        fail();
    }
    m_at += spelled.size();
    return finish(token);
}

void JsonScanner::skipDigits()
{
    if (!isAvailable(1) || !isDigit(*m_at)) {
        fail();
    }
    while (isAvailable(1) && isDigit(*m_at)) {
        ++m_at;
    }
}

JsonScanner::Token JsonScanner::number()
{
    if (*m_at == '-') {
        ++m_at;
    }
    if (isAvailable(1) && *m_at == '0') {
        ++m_at;
    } else {
        skipDigits();
    }
    if (isAvailable(1) && *m_at == '.') {
        ++m_at;
        skipDigits();
    }
    if (isAvailable(1) && (*m_at | 0x20) == 'e') {
        ++m_at;
        if (isAvailable(1) && (*m_at == '+' || *m_at == '-')) {
            ++m_at;
        }
        skipDigits();
    }
    return finish(Token::number);
}

/// Steps over the escape at m_at. False when the rest of it has not been read yet.
bool JsonScanner::skipEscape()
{
    const std::optional<qsizetype> length = Json::escapeLength({m_at, m_end - m_at});
    if (!length || (*length == 0 && !m_source)) {
        fail();
    }
    m_at += *length;
    return *length > 0;
}

/// Reads on inside a string, to its end or to the end of what has been read. Begins at m_begin.
JsonScanner::Token JsonScanner::textPiece()
{
    m_at = m_begin;
    while (true) {
        while (m_at != m_end && *m_at != '"' && *m_at != '\\' && static_cast<unsigned char>(*m_at) >= 0x20) {
            ++m_at;
        }
        if (m_at != m_end && *m_at == '\\' && skipEscape()) {
            continue;
        }
        m_tokenEnd = m_at;
        m_isInsideText = m_at == m_end || *m_at == '\\';
        if (!m_isInsideText) {
            if (*m_at != '"' || !raw().isValidUtf8()) {
                fail();
            }
            m_tokenEnd = m_at++;
            m_expect = m_isObject.empty() ? Expect::nothing : Expect::commaOrEnd;
            return Token::text;
        }
        m_tokenEnd = m_begin + Text::wholeCharacters(raw());
        if (m_tokenEnd != m_begin) {
            if (!raw().isValidUtf8()) {
                fail();
            }
            m_at = m_tokenEnd;
            return Token::text;
        }
        if (!refill()) {
            fail();
        }
        m_at = m_begin;
    }
}

void JsonScanner::skipRest(Token first)
{
    const auto isWhole = [](Token token) {
        return token != Token::objectBegin && token != Token::arrayBegin;
    };
    if (isWhole(first)) {
        while (m_isInsideText) {
            next();
        }
        return;
    }
    for (const qsizetype outer = depth() - 1; depth() > outer;) {
        next();
    }
}

} // namespace vesk
