#include "onboarding/views/step_indicator.h"

#include "onboarding/views/motion.h"
#include "onboarding/views/style.h"

#include <QPainter>

#include <cmath>

namespace lumetry::views {
namespace {

constexpr double otherWidth = 18;
constexpr double currentWidth = 34;
constexpr double dashHeight = 5;
constexpr double cornerRadius = 2;
constexpr double spacing = 7;

} // namespace

StepIndicator::StepIndicator(int count, QWidget* parent)
    : QWidget(parent), shares_(static_cast<std::size_t>(count), 0.0) {
    setFixedSize(
        static_cast<int>(count * otherWidth + currentWidth - otherWidth + (count - 1) * spacing),
        static_cast<int>(dashHeight));
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void StepIndicator::setStep(int step) {
    setAccessibleName(QStringLiteral("Step %1 of %2").arg(step + 1).arg(shares_.size()));
    delete animation_;
    animation_ = animate(this, {0.25, standardEase()}, [this, from = shares_, step](double share) {
        for (std::size_t i = 0; i < shares_.size(); ++i) {
            shares_[i] = std::lerp(from[i], static_cast<int>(i) == step ? 1 : 0, share);
        }
        update();
    });
}

double StepIndicator::dashWidth(int dash) const {
    return otherWidth + (currentWidth - otherWidth) * shares_.at(static_cast<std::size_t>(dash));
}

void StepIndicator::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    double x = 0;
    for (int i = 0; i < static_cast<int>(shares_.size()); ++i) {
        const double width = dashWidth(i);
        const double share = shares_[static_cast<std::size_t>(i)];
        for (const QColor& color : {whiteAt(0.16 * (1 - share)), pink(share)}) {
            paintBox(painter, {x, 0, width, dashHeight}, {color, {}, cornerRadius});
        }
        x += width + spacing;
    }
}

} // namespace lumetry::views
