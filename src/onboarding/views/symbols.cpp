#include "onboarding/views/symbols.h"

#include "onboarding/views/motion.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace lumetry::views {
namespace {

/// Symbols are drawn on a square of that side, y downwards.
constexpr double grid = 24;
/// A symbol is somewhat larger than the letters beside it.
constexpr double sidePerFontSize = 1.2;

double lineWidth(SymbolWeight weight) {
    return weight == SymbolWeight::semibold ? 2.5 : 1.9;
}

void drawLines(QPainter& painter, std::initializer_list<QPointF> points) {
    QPainterPath path(*points.begin());
    for (const QPointF& point : points) {
        path.lineTo(point);
    }
    painter.drawPath(path);
}

void fillEllipse(QPainter& painter, QPointF centre, double radius) {
    QPainterPath path;
    path.addEllipse(centre, radius, radius);
    painter.fillPath(path, painter.pen().color());
}

void drawLock(QPainter& painter) {
    QPainterPath body;
    body.addRoundedRect(QRectF(4.5, 10.5, 15, 11), 2.6, 2.6);
    painter.fillPath(body, painter.pen().color());
    QPainterPath shackle({7.8, 11});
    shackle.lineTo(7.8, 7.2);
    shackle.arcTo(QRectF(7.8, 3, 8.4, 8.4), 180, -180);
    shackle.lineTo(16.2, 11);
    painter.drawPath(shackle);
}

void drawAccessibility(QPainter& painter) {
    painter.drawEllipse(QPointF(12, 12), 10.4, 10.4);
    fillEllipse(painter, {12, 6.9}, 1.75);
    drawLines(painter, {{6.7, 9.7}, {10.3, 10.5}, {13.7, 10.5}, {17.3, 9.7}});
    drawLines(painter, {{10.6, 10.8}, {10.6, 13.6}, {9, 18.4}});
    drawLines(painter, {{13.4, 10.8}, {13.4, 13.6}, {15, 18.4}});
    QPainterPath torso;
    torso.addRect(QRectF(10.4, 10.4, 3.2, 4));
    painter.fillPath(torso, painter.pen().color());
}

void drawDashedRectangle(QPainter& painter) {
    constexpr QPointF badge = {18.4, 17.4};
    QPainterPath all;
    all.addRect(-1, -1, grid + 2, grid + 2);
    QPainterPath aroundBadge;
    aroundBadge.addEllipse(badge, 6.6, 6.6);
    painter.save();
    painter.setClipPath(all.subtracted(aroundBadge));
    QPen dashes = painter.pen();
    dashes.setCapStyle(Qt::FlatCap);
    dashes.setDashPattern({2.0, 1.25});
    painter.setPen(dashes);
    painter.drawRoundedRect(QRectF(1.6, 4, 20.8, 15.4), 3.2, 3.2);
    painter.restore();
    painter.drawEllipse(badge, 4.2, 4.2);
    fillEllipse(painter, badge, 2.2);
}

void drawShift(QPainter& painter) {
    QPainterPath arrow({12, 3.2});
    for (const QPointF& point : {QPointF(2.8, 12.6), QPointF(7.8, 12.6), QPointF(7.8, 20.4),
                                 QPointF(16.2, 20.4), QPointF(16.2, 12.6), QPointF(21.2, 12.6)}) {
        arrow.lineTo(point);
    }
    arrow.closeSubpath();
    painter.drawPath(arrow);
}

} // namespace

void paintSymbol(QPainter& painter, Symbol symbol, const QRectF& square, const QColor& color,
                 SymbolWeight weight) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.topLeft());
    painter.scale(square.width() / grid, square.height() / grid);
    painter.setPen(QPen(color, lineWidth(weight), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    switch (symbol) {
    case Symbol::chevronLeft:
        drawLines(painter, {{15.5, 4}, {8, 12}, {15.5, 20}});
        break;
    case Symbol::lockFill:
        drawLock(painter);
        break;
    case Symbol::accessibility:
        drawAccessibility(painter);
        break;
    case Symbol::rectangleDashedBadgeRecord:
        drawDashedRectangle(painter);
        break;
    case Symbol::control:
        drawLines(painter, {{5.5, 12.5}, {12, 6}, {18.5, 12.5}});
        break;
    case Symbol::shift:
        drawShift(painter);
        break;
    }
    painter.restore();
}

SymbolView::SymbolView(Symbol symbol, double size, SymbolWeight weight, const QColor& tint,
                       const QString& description, QWidget* parent)
    : QLabel(parent), symbol_(symbol), weight_(weight), tint_(tint), side_(size * sidePerFontSize) {
    const int side = static_cast<int>(std::ceil(side_));
    setFixedSize(side, side);
    setAccessibleName(description);
    // What has a picture counts as one.
    QPixmap picture(1, 1);
    picture.fill(Qt::transparent);
    setPixmap(picture);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolView::setTint(const QColor& tint) {
    if (tint != tint_) {
        tint_ = tint;
        update();
    }
}

void SymbolView::pop() {
    animate(this, {0.38, linear()}, [this](double time) {
        constexpr double start = 0.5;
        constexpr double peak = 1.3;
        constexpr double peakTime = 0.55;
        const double settling = (time - peakTime) / (1 - peakTime);
        scale_ = time < peakTime
                     ? std::lerp(start, peak, easeOut().valueForProgress(time / peakTime))
                     : std::lerp(peak, 1, easeInEaseOut().valueForProgress(settling));
        update();
    });
}

void SymbolView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const double side = side_ * scale_;
    paintSymbol(painter, symbol_, {(width() - side) / 2, (height() - side) / 2, side, side}, tint_,
                weight_);
}

} // namespace lumetry::views
