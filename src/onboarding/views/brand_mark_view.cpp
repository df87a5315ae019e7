#include "onboarding/views/brand_mark_view.h"

#include "onboarding/views/glow.h"
#include "onboarding/views/motion.h"
#include "onboarding/views/pulse.h"
#include "onboarding/views/style.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace lumetry::views {
namespace {

constexpr double grid = 24;
constexpr double lineWidth = 5;
constexpr double cornerRadius = 6;
constexpr double glowRadius = 13;
constexpr double restingGlow = 0.18;
constexpr double focusedGlow = 0.45;
constexpr double bloomGlow = 0.55;
constexpr double focusedSpread = 3.5;
constexpr double strokeDelay = 0.24; // seconds between the strokes
constexpr double bloomSeconds = 1.2;
constexpr double bloomStart = strokeDelay * BrandMarkView::strokeCount + 0.4;

/// A line from a to b around a rounded corner.
QPainterPath corner(QPointF a, QPointF tip, QPointF b) {
    // How far a curve's handles lie from its ends so that it comes out as a quarter of a circle.
    constexpr double kappa = 0.5523;
    const auto towards = [](QPointF from, QPointF to, double distance) {
        const QPointF way = to - from;
        return from + way * (distance / std::max(std::abs(way.x()), std::abs(way.y())));
    };
    const double handle = cornerRadius * (1 - kappa);
    QPainterPath path(a);
    path.lineTo(towards(tip, a, cornerRadius));
    path.cubicTo(towards(tip, a, handle), towards(tip, b, handle), towards(tip, b, cornerRadius));
    path.lineTo(b);
    return path;
}

QPainterPath line(QPointF a, QPointF b) {
    QPainterPath path(a);
    path.lineTo(b);
    return path;
}

/// Draws the lines one after another up to a share of their whole length.
void drawUpTo(QPainter& painter, const std::vector<QPainterPath>& lines, double share) {
    double whole = 0;
    for (const QPainterPath& path : lines) {
        whole += path.length();
    }
    double left = whole * share;
    for (const QPainterPath& path : lines) {
        if (left <= 0) {
            return;
        }
        QPen pen(pink(), lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        if (left < path.length()) {
            pen.setDashPattern({left / lineWidth, path.length() / lineWidth + 1});
        }
        painter.strokePath(path, pen);
        left -= path.length();
    }
}

/// The glow in the course of the entrance.
double bloom(double seconds) {
    constexpr double peakTime = 0.4;
    const double time = (seconds - bloomStart) / bloomSeconds;
    if (time <= 0) {
        return 0;
    }
    if (time < peakTime) {
        return bloomGlow * time / peakTime;
    }
    return bloomGlow +
           (restingGlow - bloomGlow) * std::min((time - peakTime) / (1 - peakTime), 1.0);
}

} // namespace

BrandMarkView::BrandMarkView(double markSize, QWidget* parent)
    : QWidget(parent), markSize_(markSize) {
    const double unit = markSize / grid;
    const auto at = [unit](double x, double y) { return QPointF(x * unit, y * unit); };
    strokes_ = {
        {{corner(at(4, 8.5), at(4, 4), at(8.5, 4))},
         {corner(at(15.5, 4), at(20, 4), at(20, 8.5))},
         {corner(at(20, 15.5), at(20, 20), at(15.5, 20))},
         {corner(at(8.5, 20), at(4, 20), at(4, 15.5))},
         {line(at(9, 12), at(15, 12)), line(at(9, 10), at(9, 14)), line(at(15, 10), at(15, 14))}}};
    const int side = static_cast<int>(markSize);
    for (std::size_t i = 0; i < strokeCount; ++i) {
        glows_.at(i) = makeGlow({side, side}, glowRadius, pink(), [&](QPainter& painter) {
            painter.setRenderHint(QPainter::Antialiasing);
            drawUpTo(painter, strokes_.at(i), 1);
        });
    }
    strokeEnds_.fill(1);
    glow_ = restingGlow;
    setFixedSize(side + 2 * margin(), side + 2 * margin());
    setAccessibleName(QStringLiteral("Lumetry"));
    setMouseTracking(true);
    constexpr double floatSeconds = 2.6;
    constexpr double floatHeight = 3;
    float_ = new Pulse(this, {floatHeight, -floatHeight, floatSeconds, 30, easeInEaseOut()},
                       [this](double drift) {
                           drift_ = drift;
                           update();
                       });
}

int BrandMarkView::margin() {
    constexpr int movement = 8; // of floating and spreading
    return glowReach(glowRadius) + movement;
}

void BrandMarkView::playEntrance() {
    delete entrance_;
    constexpr double end = bloomStart + bloomSeconds;
    entrance_ = animate(this, {end, linear()}, [this](double share) {
        showEntrance(share * end);
        if (share == 1) {
            glow_ = lastingGlow();
        }
    });
    float_->begin();
}

double BrandMarkView::lastingGlow() const {
    return focused_ ? focusedGlow : restingGlow;
}

void BrandMarkView::showEntrance(double seconds) {
    constexpr double cornerSeconds = 0.5;
    constexpr double markerSeconds = 0.7;
    for (std::size_t i = 0; i < strokeCount; ++i) {
        const double length = i + 1 == strokeCount ? markerSeconds : cornerSeconds;
        const double time = (seconds - strokeDelay * static_cast<double>(i)) / length;
        strokeEnds_.at(i) = easeInEaseOut().valueForProgress(std::clamp(time, 0.0, 1.0));
    }
    glow_ = bloom(seconds);
    update();
}

void BrandMarkView::setFocused(bool focused) {
    if (focused == focused_) {
        return;
    }
    focused_ = focused;
    delete focusing_;
    focusing_ =
        animate(this, {0.28, easeOut()}, [this, spread = spread_, glow = glow_](double share) {
            spread_ = std::lerp(spread, focused_ ? focusedSpread : 0, share);
            if (!entrance_) { // whose bloom covers it
                glow_ = std::lerp(glow, lastingGlow(), share);
            }
            update();
        });
}

void BrandMarkView::mouseMoveEvent(QMouseEvent* event) {
    setFocused(QRectF(margin(), margin(), markSize_, markSize_).contains(event->position()));
    event->ignore();
}

void BrandMarkView::leaveEvent(QEvent* /*event*/) {
    setFocused(false);
}

QPointF BrandMarkView::offset(std::size_t stroke) const {
    static constexpr std::array<QPointF, strokeCount> directions = {
        {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}, {0, 0}}};
    return directions.at(stroke) * spread_ + QPointF(margin(), margin() + drift_);
}

void BrandMarkView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF reach(glowReach(glowRadius), glowReach(glowRadius));
    painter.setOpacity(glow_);
    for (std::size_t i = 0; i < strokeCount; ++i) {
        painter.drawPixmap(offset(i) - reach, glows_.at(i));
    }
    painter.setOpacity(1);
    for (std::size_t i = 0; i < strokeCount; ++i) {
        painter.save();
        painter.translate(offset(i));
        drawUpTo(painter, strokes_.at(i), strokeEnds_.at(i));
        painter.restore();
    }
}

} // namespace lumetry::views
