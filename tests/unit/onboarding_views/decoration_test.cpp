#include "onboarding/views/brand_mark_view.h"
#include "onboarding/views/dimension_line_view.h"
#include "views_test.h"

#include <QApplication>
#include <QMouseEvent>

namespace lumetry {
namespace {

using namespace views;

TEST(DimensionLineView, GrowsFromItsMiddleAndCountsItsWidth) {
    QWidget host;
    auto* const line = new DimensionLineView(&host);
    line->resize(312, 24);
    // Once more in the middle of it, and it begins anew.
    for (const int end : {900, 1300}) {
        line->animateIn(0.5);
        EXPECT_EQ(line->progress(), 0);
        passTime(host, 499);
        EXPECT_EQ(line->progress(), 0);
        passTime(host, 900);
        EXPECT_EQ(line->progress(), 0.875);
        passTime(host, end);
    }
    EXPECT_EQ(line->label(), "312 px");
}

TEST(BrandMarkView, SpreadsItsCornersUnderThePointer) {
    QWidget host;
    auto* const mark = new BrandMarkView(96, &host);
    const int margin = BrandMarkView::margin();
    const auto hover = [&](const QPointF& inMark) {
        const QPointF at = inMark + QPointF(margin, margin);
        QMouseEvent event(QEvent::MouseMove, at, mark->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                          Qt::NoModifier);
        QApplication::sendEvent(mark, &event);
    };
    hover({-10, 40});
    passTime(host, 280);
    EXPECT_EQ(mark->spread(), 0) << "beside the mark";
    hover({40, 40});
    passTime(host, 140);
    EXPECT_NEAR(mark->spread(), 3.5 * 0.6846, 0.01);
    passTime(host, 280);
    EXPECT_EQ(mark->spread(), 3.5);
    EXPECT_EQ(mark->glowOpacity(), 0.45);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(mark, &leave);
    passTime(host, 280);
    EXPECT_EQ(mark->glowOpacity(), 0.18);
    EXPECT_EQ(mark->spread(), 0);
}

} // namespace
} // namespace lumetry
