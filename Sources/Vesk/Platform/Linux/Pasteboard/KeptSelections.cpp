#include "Platform/Linux/Pasteboard/KeptSelections.h"

#include <QDataStream>
#include <QIODevice>
#include <QList>

namespace vesk::KeptSelections {

namespace {

constexpr auto Version = QDataStream::Qt_6_4;

void pack(QDataStream &out, XcbConnection &connection, xcb_atom_t selection, const SelectionFormats &formats)
{
    out << connection.atomName(selection) << quint32(formats.size());
    for (const SelectionFormat &format : formats) {
        out << connection.atomName(format.target) << connection.atomName(format.type)
            << qint32(format.unitBits) << format.bytes;
    }
}

SelectionFormats unpack(QDataStream &in, XcbConnection &connection)
{
    quint32 count = 0;
    in >> count;
    SelectionFormats formats;
    for (; count > 0 && in.status() == QDataStream::Ok; --count) {
        QByteArray target;
        QByteArray type;
        qint32 unitBits = 8;
        SelectionFormat format;
        in >> target >> type >> unitBits >> format.bytes;
        format.target = connection.atom(target);
        format.type = connection.atom(type);
        format.unitBits = unitBits;
        formats.push_back(std::move(format));
    }
    return formats;
}

} // namespace

Contents offered(const X11Selections &selections)
{
    Contents contents;
    for (const xcb_atom_t selection : {selections.clipboard(), selections.primary()}) {
        if (const SelectionFormats *formats = selections.own(selection)) {
            contents[selection] = *formats;
        }
    }
    return contents;
}

QByteArray packed(XcbConnection &connection, const Contents &contents)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(Version);
    for (const auto &[selection, formats] : contents) {
        pack(out, connection, selection, formats);
    }
    return bytes;
}

bool takeOver(X11Selections &selections, const QByteArray &packed,
              const std::function<bool(xcb_atom_t)> &mayBeHad)
{
    QDataStream in(packed);
    in.setVersion(Version);
    while (!in.atEnd()) {
        QByteArray name;
        in >> name;
        SelectionFormats formats = unpack(in, selections.connection());
        if (in.status() != QDataStream::Ok) {
            return false;
        }
        const xcb_atom_t selection = selections.connection().atom(name);
        if (!formats.empty() && (!mayBeHad || mayBeHad(selection))) {
            selections.write(selection, std::move(formats));
        }
    }
    return selections.ownsAnything();
}

} // namespace vesk::KeptSelections
