// Writes the application's icon into a theme's folders, for an installation: vesk_icon_files FOLDER NAME
// Small sizes are drawn for their own pixels; a scaled picture of the large one would be blurred.

#include "App/Glyph.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QPixmap>

#include <cstdio>

namespace {

using namespace vesk;

/// A path in the words of SVG.
QString words(const QPainterPath &path)
{
    QStringList all;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        const QString point = QStringLiteral("%1 %2").arg(element.x).arg(element.y);
        switch (element.type) {
        case QPainterPath::MoveToElement: all.append(QString(u'M' + point)); break;
        case QPainterPath::LineToElement: all.append(QString(u'L' + point)); break;
        case QPainterPath::CurveToElement: all.append(QString(u'C' + point)); break;
        case QPainterPath::CurveToDataElement: all.append(point); break;
        }
    }
    return all.join(u' ');
}

QByteArray scalable()
{
    constexpr int Side = 256;
    constexpr int Margin = Side / 6;
    QString svg = QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %1 %1\">\n"
                                 "<rect width=\"%1\" height=\"%1\" rx=\"%2\" fill=\"%3\"/>\n"
                                 "<g transform=\"translate(%4 %4)\" fill=\"%5\">\n")
                      .arg(Side)
                      .arg(Side * 0.225)
                      .arg(Glyph::Plate.name())
                      .arg(Margin)
                      .arg(Glyph::OnPlate.name());
    for (const QPainterPath &path : Glyph::paths(Side - 2 * Margin)) {
        svg += QStringLiteral("<path d=\"%1\"/>\n").arg(words(path));
    }
    return QString(svg + u"</g>\n</svg>\n").toUtf8();
}

bool write(const QString &folder, const QString &name)
{
    for (const int side : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const QString place = QStringLiteral("%1/%2x%2/apps").arg(folder).arg(side);
        if (!QDir().mkpath(place)
            || !Glyph::applicationIcon().pixmap(side).save(place + u'/' + name + u".png")) {
            return false;
        }
    }
    const QString place = folder + u"/scalable/apps";
    QFile file(place + u'/' + name + u".svg");
    return QDir().mkpath(place) && file.open(QIODevice::WriteOnly) && file.write(scalable()) > 0;
}

} // namespace

int main(int argumentCount, char **arguments)
{
    const QGuiApplication application(argumentCount, arguments);
    const QStringList words = QGuiApplication::arguments();
    if (words.size() != 3 || !write(words.at(1), words.at(2))) {
        std::fprintf(stderr, "error: the icons could not be written\n");
        return 1;
    }
    return 0;
}
