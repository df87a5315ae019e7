#include "onboarding/views/pulse.h"

#include <QEasingCurve>
#include <QEvent>
#include <QWidget>

#include <cmath>
#include <utility>

namespace lumetry::views {

Pulse::Pulse(QWidget* widget, const Course& course, std::function<void(double)> apply)
    : QObject(widget), course_(course), apply_(std::move(apply)), widget_(widget) {
    constexpr int millisecondsPerSecond = 1000;
    timer_.setInterval(millisecondsPerSecond / course_.stepsPerSecond);
    QObject::connect(&timer_, &QTimer::timeout, this, [this] { step(); });
    widget_->installEventFilter(this);
}

void Pulse::start() {
    if (!wanted_) {
        wanted_ = true;
        clock_.start();
        apply_(course_.from);
        follow(widget_->isVisible());
    }
}

void Pulse::stop() {
    wanted_ = false;
    timer_.stop();
}

bool Pulse::eventFilter(QObject* /*watched*/, QEvent* event) {
    if (event->type() == QEvent::Show || event->type() == QEvent::Hide) {
        follow(event->type() == QEvent::Show);
    }
    return false;
}

void Pulse::follow(bool visible) {
    if (wanted_ && visible) {
        timer_.start();
    } else {
        timer_.stop();
    }
}

void Pulse::step() {
    static const QEasingCurve easing(QEasingCurve::InOutSine);
    constexpr double millisecondsPerSecond = 1000;
    const double ways =
        static_cast<double>(clock_.elapsed()) / millisecondsPerSecond / course_.seconds;
    const double along = std::fmod(ways, 2);
    const double way = along <= 1 ? along : 2 - along;
    const double share = course_.eases ? easing.valueForProgress(way) : way;
    apply_(course_.from + (course_.to - course_.from) * share);
}

} // namespace lumetry::views
