#include "App/Glyph.h"

#include <QImage>

#include <gtest/gtest.h>

namespace vesk {

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
