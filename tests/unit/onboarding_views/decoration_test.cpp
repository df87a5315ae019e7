#include "onboarding/views/brand_mark_view.h"
#include "onboarding/views/dimension_line_view.h"
#include "views_test.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QMouseEvent>

#include <algorithm>

namespace lumetry {
namespace {

using namespace views;

TEST(DimensionLineView, GrowsFromItsMiddleAndCountsItsWidth) {
    EXPECT_EQ(DimensionLineView::grown(0), 0);
    EXPECT_EQ(DimensionLineView::grown(0.5), 0.875);
    EXPECT_EQ(DimensionLineView::grown(1), 1);
    QWidget host;
    host.resize(400, 60);
    auto* const line = new DimensionLineView(&host);
    line->resize(312, 24);
    EXPECT_EQ(line->height(), 24);
    EXPECT_EQ(line->label(), "312 px");
    host.show();
    const auto inked = [&](int x) {
        const QImage picture = line->grab().toImage();
        return picture.pixelColor(x, 7) != picture.pixelColor(30, 1);
    };
    EXPECT_TRUE(inked(1) && inked(310)) << "its ends";
    QElapsedTimer clock;
    clock.start();
    line->animateIn(0.1);
    EXPECT_EQ(line->progress(), 0);
    EXPECT_FALSE(inked(1));
    ASSERT_TRUE(runUntil([&] { return line->progress() > 0; }));
    EXPECT_GE(clock.elapsed(), 95);
    ASSERT_TRUE(runUntil([&] { return line->progress() > 0.5; }));
    EXPECT_FALSE(inked(1));
    // Once more, in the middle of it.
    line->animateIn(0.2);
    run(100);
    EXPECT_EQ(line->progress(), 0) << "the first growing goes on";
    clock.start();
    ASSERT_TRUE(runUntil([&] { return line->progress() == 1; }));
    EXPECT_GE(clock.elapsed(), 850);
    EXPECT_EQ(line->label(), "312 px");
    EXPECT_TRUE(inked(1) && inked(310));
}

class BrandMarkViewTest : public testing::Test {
protected:
    BrandMarkViewTest() {
        host.resize(300, 300);
        mark = new BrandMarkView(96, &host);
        host.show();
    }

    void hover(const QPointF& inMark) {
        const QPointF at = inMark + QPointF(BrandMarkView::margin(), BrandMarkView::margin());
        QMouseEvent event(QEvent::MouseMove, at, mark->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                          Qt::NoModifier);
        QApplication::sendEvent(mark, &event);
    }

    QWidget host;
    BrandMarkView* mark;
};

TEST_F(BrandMarkViewTest, DrawsItsStrokesOneAfterAnother) {
    EXPECT_EQ(mark->strokeEnd(0), 1);
    mark->playEntrance();
    EXPECT_EQ(mark->strokeEnd(0), 0);
    EXPECT_EQ(mark->glowOpacity(), 0);
    ASSERT_TRUE(runUntil([&] { return mark->strokeEnd(1) > 0; }));
    EXPECT_GT(mark->strokeEnd(0), mark->strokeEnd(1));
    EXPECT_EQ(mark->strokeEnd(4), 0);
    double brightest = 0;
    ASSERT_TRUE(runUntil(
        [&] {
            brightest = std::max(brightest, mark->glowOpacity());
            return brightest > 0.3 && mark->glowOpacity() < 0.18001;
        },
        4000));
    EXPECT_NEAR(brightest, 0.55, 0.05);
    EXPECT_EQ(mark->strokeEnd(4), 1);
}

TEST_F(BrandMarkViewTest, SpreadsItsCornersUnderThePointer) {
    EXPECT_EQ(mark->spread(), 0);
    hover({-10, 40});
    run(60);
    EXPECT_EQ(mark->spread(), 0) << "beside the mark";
    QElapsedTimer clock;
    clock.start();
    hover({40, 40});
    ASSERT_TRUE(runUntil([&] { return mark->spread() == 3.5; }));
    EXPECT_GE(clock.elapsed(), 250);
    EXPECT_EQ(mark->glowOpacity(), 0.45);
    // The upper left corner lies at (16, 16) on the mark, and moves away from the middle.
    const auto covered = [&](int x, int y) {
        const int margin = BrandMarkView::margin();
        const QColor color = mark->grab().toImage().pixelColor(margin + x, margin + y);
        return color.red() - color.green() > 150;
    };
    EXPECT_TRUE(covered(11, 28));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(mark, &leave);
    ASSERT_TRUE(runUntil([&] { return mark->spread() == 0; }));
    EXPECT_EQ(mark->glowOpacity(), 0.18);
    EXPECT_FALSE(covered(11, 28));
    EXPECT_TRUE(covered(16, 28));
}

} // namespace
} // namespace lumetry
