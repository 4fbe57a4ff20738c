#include "Platform/Linux/Pasteboard/PasteboardFormats.h"

#include <algorithm>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

class FormatList {
public:
    explicit FormatList(XcbConnection &connection)
        : m_connection(connection)
    {
    }

    void add(const QByteArray &target, const QByteArray &type, const QByteArray &bytes, int unitBits = 8)
    {
        const xcb_atom_t atom = m_connection.atom(target);
        if (atom != XCB_ATOM_NONE
            && std::ranges::find(m_formats, atom, &SelectionFormat::target) == m_formats.end()) {
            m_formats.push_back({atom, m_connection.atom(type), unitBits, bytes});
        }
    }

    void addText(const QByteArray &utf8)
    {
        add("UTF8_STRING", "UTF8_STRING", utf8);
        for (const char *type : {"text/plain;charset=utf-8", "text/plain"}) {
            add(type, type, utf8);
        }
        add("TEXT", "UTF8_STRING", utf8);
        // STRING is Latin-1: better not offered than with question marks in it.
        const QString text = QString::fromUtf8(utf8);
        if (std::ranges::all_of(text, [](QChar c) { return c.unicode() <= 0xff; })) {
            add("STRING", "STRING", text.toLatin1());
        }
    }

    /// "TYPE/bits", as encodingOf() writes it; without it the form is its own type, in bytes.
    void addMarked(const PasteboardData &data)
    {
        const QByteArray name = data.type.toUtf8();
        const qsizetype slash = data.encoding.lastIndexOf(u'/');
        const int bits = data.encoding.mid(slash + 1).toInt();
        if (slash > 0 && (bits == 8 || bits == 16 || bits == 32)) {
            add(name, data.encoding.left(slash).toUtf8(), data.bytes, bits);
        } else {
            add(name, name, data.bytes);
        }
    }

    SelectionFormats take() { return std::move(m_formats); }

private:
    XcbConnection &m_connection;
    SelectionFormats m_formats;
};

QString encodingOf(XcbConnection &connection, const SelectionFormat &format)
{
    return QString(QString::fromUtf8(connection.atomName(format.type)) + u'/'
                   + QString::number(format.unitBits));
}

} // namespace

SelectionFormats formatsFor(XcbConnection &connection, const QList<PasteboardItem> &items)
{
    FormatList list(connection);
    for (const PasteboardItem &item : items) {
        for (const PasteboardData &data : item.representations) {
            if (data.type == QLatin1StringView(PasteboardType::String)) {
                list.addText(data.bytes);
            } else {
                list.addMarked(data);
            }
            if (data.type == QLatin1StringView(PasteboardType::Transient)) {
                list.add("x-kde-passwordManagerHint", "x-kde-passwordManagerHint", "secret");
            }
        }
    }
    return list.take();
}

QList<PasteboardItem> itemsFor(XcbConnection &connection, const SelectionFormats &formats)
{
    if (formats.empty()) {
        return {};
    }
    PasteboardItem item;
    for (const SelectionFormat &format : formats) {
        item.representations.append({QString::fromUtf8(connection.atomName(format.target)), format.bytes,
                                     encodingOf(connection, format)});
    }
    return {item};
}

} // namespace vesk
