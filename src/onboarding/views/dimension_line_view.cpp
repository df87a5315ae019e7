#include "onboarding/views/dimension_line_view.h"

#include "onboarding/views/motion.h"
#include "onboarding/views/style.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

namespace lumetry::views {
namespace {

constexpr int lineHeight = 24;

} // namespace

DimensionLineView::DimensionLineView(QWidget* parent) : QWidget(parent) {
    setFixedHeight(lineHeight);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void DimensionLineView::animateIn(double seconds) {
    delete growth_;
    growth_ = animate(this, {0.8, QEasingCurve::OutCubic, seconds}, [this](double progress) {
        progress_ = progress;
        update();
    });
}

QString DimensionLineView::label() const {
    return QStringLiteral("%1 px").arg(static_cast<int>(width() * progress_));
}

QSize DimensionLineView::sizeHint() const {
    return {0, lineHeight};
}

void DimensionLineView::paintEvent(QPaintEvent* /*event*/) {
    constexpr double leastProgress = 0.01;
    if (progress_ <= leastProgress) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr double tick = 5;
    constexpr double lineWidth = 1.5;
    const QPointF centre(width() / 2.0, height() / 2.0);
    const double half = (width() - 2) * progress_ / 2;
    painter.setPen(QPen(pink(0.55 * progress_), lineWidth, Qt::SolidLine, Qt::RoundCap));
    QPainterPath path;
    for (const double x : {centre.x() - half, centre.x() + half}) {
        path.moveTo(x, centre.y() - tick);
        path.lineTo(x, centre.y() + tick);
    }
    path.moveTo(centre.x() - half, centre.y());
    path.lineTo(centre.x() + half, centre.y());
    painter.drawPath(path);

    const QFont font = monospacedFont(10, FontWeight::semibold);
    const QFontMetricsF metrics(font);
    const double textWidth = metrics.horizontalAdvance(label());
    const double textHeight = metrics.height();
    const QRectF pill(centre.x() - textWidth / 2 - 7, centre.y() - textHeight / 2 - 3,
                      textWidth + 14, textHeight + 6);
    paintBox(painter, pill, {pink(progress_), {}, pill.height() / 2});
    painter.setFont(font);
    painter.setPen(whiteAt(progress_));
    painter.drawText(pill, Qt::AlignCenter, label());
}

} // namespace lumetry::views
