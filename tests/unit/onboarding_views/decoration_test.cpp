#include "onboarding/views/brand_mark_view.h"
#include "onboarding/views/dimension_line_view.h"
#include "onboarding/views/motion.h"
#include "onboarding/views/style.h"
#include "views_test.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

#include <array>
#include <numbers>

namespace lumetry {
namespace {

using namespace views;

TEST(Motion, FollowsThePlatformsCurves) {
    struct Case {
        const QEasingCurve& curve;
        std::array<double, 3> quarters; ///< solved for the curve's cubic by hand
    };
    for (const Case& one :
         {Case{easeOut(), {0.3781, 0.6846, 0.9065}}, Case{easeInEaseOut(), {0.1292, 0.5, 0.8708}},
          Case{standardEase(), {0.4085, 0.8024, 0.9605}}}) {
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(one.curve.valueForProgress((i + 1) / 4.0), one.quarters.at(i), 1e-3);
        }
    }
}

TEST(Box, HasTheSameCornersWithABorderAsWithout) {
    constexpr double radius = 8;
    for (const QColor& border : {QColor(), QColor(Qt::white)}) {
        QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        paintBox(painter, image.rect(), {Qt::white, border, radius});
        double cutOff = 0;
        for (int y = 0; y < image.height() / 2; ++y) {
            for (int x = 0; x < image.width() / 2; ++x) {
                cutOff += 1 - image.pixelColor(x, y).alphaF();
            }
        }
        // With what smoothing adds; half a pixel of radius is as much again.
        EXPECT_NEAR(cutOff, radius * radius * (1 - std::numbers::pi / 4), 2);
    }
}

TEST(DimensionLineView, GrowsFromItsMiddleAndCountsItsWidth) {
    QWidget host;
    auto* const line = new DimensionLineView(&host);
    line->resize(312, 24);
    const auto inked = [&](int x) {
        const QImage picture = line->grab().toImage();
        return picture.pixelColor(x, 7) != picture.pixelColor(30, 1);
    };
    EXPECT_TRUE(inked(1) && inked(310)) << "its ends";
    // Once more in the middle of it, and it begins anew.
    for (const int end : {900, 1300}) {
        line->animateIn(0.5);
        EXPECT_EQ(line->progress(), 0);
        passTime(host, 499);
        EXPECT_EQ(line->progress(), 0);
        EXPECT_FALSE(inked(1));
        passTime(host, 900);
        EXPECT_EQ(line->progress(), 0.875);
        EXPECT_FALSE(inked(1));
        passTime(host, end);
    }
    EXPECT_EQ(line->label(), "312 px");
    EXPECT_TRUE(inked(1) && inked(310));
}

TEST(BrandMarkView, DrawsItsStrokesOneAfterAnother) {
    QWidget host;
    auto* const mark = new BrandMarkView(96, &host);
    mark->playEntrance();
    passTime(host, 365);
    EXPECT_NEAR(mark->strokeEnd(0), 0.8488, 1e-3);
    EXPECT_NEAR(mark->strokeEnd(1), 0.129, 1e-3);
    EXPECT_EQ(mark->strokeEnd(4), 0);
    EXPECT_EQ(mark->glowOpacity(), 0);
    passTime(host, 1600 + 480);
    EXPECT_EQ(mark->strokeEnd(4), 1);
    EXPECT_NEAR(mark->glowOpacity(), 0.55, 1e-3);
    passTime(host, 2800);
    EXPECT_EQ(mark->glowOpacity(), 0.18);
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
    // The upper left corner lies at (16, 16) on the mark, and moves away from the middle.
    const auto covered = [&](int x, int y) {
        const QColor color = mark->grab().toImage().pixelColor(margin + x, margin + y);
        return color.red() - color.green() > 150;
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
    EXPECT_TRUE(covered(11, 28));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(mark, &leave);
    passTime(host, 280);
    EXPECT_EQ(mark->glowOpacity(), 0.18);
    EXPECT_FALSE(covered(11, 28));
    EXPECT_TRUE(covered(16, 28));
}

} // namespace
} // namespace lumetry
