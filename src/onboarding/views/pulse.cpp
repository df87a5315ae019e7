#include "onboarding/views/pulse.h"

#include <QEvent>
#include <QWidget>

#include <cmath>
#include <utility>

namespace lumetry::views {

Pulse::Pulse(QWidget* widget, const Swing& swing, std::function<void(double)> apply)
    : QTimeLine(2 * milliseconds(swing.seconds), widget), swing_(swing), apply_(std::move(apply)),
      widget_(widget) {
    constexpr int forEver = 0;
    setLoopCount(forEver);
    setUpdateInterval(milliseconds(1.0 / swing.stepsPerSecond));
    setEasingCurve(linear());
    QObject::connect(this, &QTimeLine::valueChanged, this, [this](double share) {
        const double way = 1 - std::abs(1 - 2 * share); // there and back
        apply_(std::lerp(swing_.from, swing_.to, swing_.curve.valueForProgress(way)));
    });
    widget_->installEventFilter(this);
}

void Pulse::begin() {
    if (!isRunning()) {
        apply_(swing_.from);
        start();
        setPaused(!widget_->isVisible());
    }
}

bool Pulse::eventFilter(QObject* /*watched*/, QEvent* event) {
    if (isRunning() && (event->type() == QEvent::Show || event->type() == QEvent::Hide)) {
        setPaused(event->type() == QEvent::Hide);
    }
    return false;
}

} // namespace lumetry::views
