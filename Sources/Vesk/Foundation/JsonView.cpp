#include "Foundation/JsonView.h"

#include "Foundation/JsonEscapes.h"
#include "Foundation/JsonScanner.h"
#include "Foundation/Text.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

using Token = JsonScanner::Token;

QString decoded(QByteArrayView raw)
{
    QByteArray utf8;
    Json::unescape(raw, utf8);
    QString text;
    Text::appendUtf8(utf8, text);
    return text;
}

/// A string's spelling without the escapes that slashes need not have.
QByteArray withPlainSlashes(QByteArrayView raw)
{
    QByteArray text;
    for (qsizetype i = 0; i < raw.size(); ++i) {
        if (raw[i] == '\\') { // and what it escapes, so that an escaped backslash escapes nothing
            ++i;
            if (raw[i] != '/') {
                text += '\\';
            }
        }
        text += raw[i];
    }
    return text;
}

/// The spelling of the value whose first token the scanner has just returned.
QByteArrayView wholeValue(JsonScanner &scanner, Token first)
{
    const QByteArrayView begin = scanner.raw();
    if (first == Token::text) {
        return {begin.begin() - 1, begin.size() + 2}; // with its quotation marks
    }
    scanner.skipRest(first);
    return {begin.begin(), scanner.raw().end() - begin.begin()};
}

} // namespace

JsonView JsonView::parse(QByteArrayView document)
{
    JsonScanner scanner(document);
    const JsonView view(wholeValue(scanner, scanner.next()));
    scanner.next(); // the document's end
    return view;
}

JsonView::Kind JsonView::kind() const
{
    switch (m_raw.front()) {
    case '{': return Kind::object;
    case '[': return Kind::array;
    case '"': return Kind::text;
    case 't':
    case 'f': return Kind::boolean;
    case 'n': return Kind::null;
    default: return Kind::number;
    }
}

std::vector<JsonView::Member> JsonView::members() const
{
    std::vector<Member> members;
    if (kind() == Kind::object) {
        JsonScanner scanner(m_raw);
        scanner.next();
        while (scanner.next() == Token::key) {
            QString name = decoded(scanner.raw());
            members.emplace_back(std::move(name), JsonView(wholeValue(scanner, scanner.next())));
        }
    }
    return members;
}

std::vector<JsonView> JsonView::elements() const
{
    std::vector<JsonView> elements;
    if (kind() == Kind::array) {
        JsonScanner scanner(m_raw);
        scanner.next();
        for (Token token = scanner.next(); token != Token::arrayEnd; token = scanner.next()) {
            elements.push_back(JsonView(wholeValue(scanner, token)));
        }
    }
    return elements;
}

std::optional<JsonView> JsonView::member(QStringView name) const
{
    const std::vector<Member> all = members();
    const auto found =
        std::find_if(all.rbegin(), all.rend(), [name](const Member &member) { return member.first == name; });
    return found == all.rend() ? std::nullopt : std::optional(found->second);
}

std::optional<QString> JsonView::text() const
{
    return kind() == Kind::text ? std::optional(decoded(m_raw.sliced(1).chopped(1))) : std::nullopt;
}

std::optional<qint64> JsonView::integer() const
{
    if (kind() != Kind::number) {
        return std::nullopt;
    }
    bool isInteger = false;
    const qint64 integer = m_raw.toByteArray().toLongLong(&isInteger);
    if (isInteger) {
        return integer;
    }
    constexpr double Limit = 9'223'372'036'854'775'808.0; // 2^63, the first that does not fit
    bool isNumber = false;
    const double number = m_raw.toByteArray().toDouble(&isNumber);
    const bool fits = isNumber && number >= -Limit && number < Limit && std::trunc(number) == number;
    return fits ? std::optional(static_cast<qint64>(number)) : std::nullopt;
}

QByteArray JsonView::withMember(QStringView name, QByteArrayView value) const
{
    std::vector<Member> all = members();
    const auto same = [name](const Member &member) { return member.first == name; };
    const auto found = std::find_if(all.rbegin(), all.rend(), same);
    if (found == all.rend()) {
        all.emplace_back(name.toString(), JsonView(value));
    } else {
        found->second = JsonView(value);
    }
    QByteArrayList spelled;
    for (const auto &[member, itsValue] : all) {
        spelled.append(Json::quoted(member) + ':' + itsValue.raw());
    }
    return '{' + spelled.join(',') + '}';
}

QByteArray JsonView::prettyPrinted() const
{
    QByteArray text;
    print(text, 0);
    text += '\n';
    return text;
}

void JsonView::print(QByteArray &into, qsizetype indentation) const
{
    constexpr qsizetype Step = 2;
    const QByteArray line = '\n' + QByteArray(indentation + Step, ' ');
    const auto printAll = [&](char opening, const auto &values, char closing, const auto &printOne) {
        into += opening;
        bool isFirst = true;
        for (const auto &value : values) {
            into += std::exchange(isFirst, false) ? QByteArray(line) : QByteArray(',' + line);
            printOne(value);
        }
        if (!isFirst) {
            into += '\n' + QByteArray(indentation, ' ');
        }
        into += closing;
    };
    switch (kind()) {
    case Kind::object: {
        std::vector<Member> sorted = members();
        std::stable_sort(sorted.begin(), sorted.end(),
                         [](const Member &a, const Member &b) { return a.first < b.first; });
        printAll('{', sorted, '}', [&](const Member &member) {
            into += Json::quoted(member.first) + ": ";
            member.second.print(into, indentation + Step);
        });
        break;
    }
    case Kind::array:
        printAll('[', elements(), ']',
                 [&](const JsonView &element) { element.print(into, indentation + Step); });
        break;
    case Kind::text: into += withPlainSlashes(m_raw); break;
    default: into += m_raw;
    }
}

} // namespace vesk
