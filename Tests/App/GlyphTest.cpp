#include "App/Glyph.h"

#include <QImage>

#include <gtest/gtest.h>

namespace vesk {

TEST(Glyph, itsPathsStandApartInTheMiddleOfEverySquare)
{
    for (int side = 16; side <= 256; ++side) {
        const Glyph::Paths paths = Glyph::paths(side);
        qreal end = 0;
        for (const QPainterPath &path : paths) {
            const QRectF bounds = path.boundingRect();
            EXPECT_GE(bounds.left() - end, side / 32.) << side;
            EXPECT_NEAR(bounds.center().y(), side / 2., 0.01) << side;
            end = bounds.right();
        }
        EXPECT_LE(end, side);
        EXPECT_NEAR(paths.front().boundingRect().left(), side - end, 1.01) << side; // left and right alike
    }
}

TEST(Glyph, noColumnOfItIsHalfCoveredAtThePanelsSizes)
{
    for (const int side : {16, 18, 20, 22, 24, 32, 36, 44, 48, 64}) {
        const QImage picture = Glyph::icon(Qt::black, Glyph::Look::normal)
                                   .pixmap(side)
                                   .toImage()
                                   .convertedTo(QImage::Format_ARGB32);
        ASSERT_EQ(picture.size(), QSize(side, side));
        int full = 0;
        for (int x = 0; x < side; ++x) {
            const int alpha = qAlpha(picture.pixel(x, side / 2));
            EXPECT_TRUE(alpha == 0 || alpha > 240) << side << ", column " << x << ": " << alpha;
            full += alpha > 240;
        }
        EXPECT_EQ(full % 3, 0) << side; // three strokes of one width
    }
}

} // namespace vesk
