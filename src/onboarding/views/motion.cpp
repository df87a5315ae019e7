#include "onboarding/views/motion.h"

#include <QPointF>

#include <algorithm>
#include <cmath>

namespace lumetry::views {
namespace {

QEasingCurve cubicBezier(QPointF first, QPointF second) {
    QEasingCurve curve(QEasingCurve::BezierSpline);
    curve.addCubicBezierSegment(first, second, {1, 1});
    return curve;
}

} // namespace

const QEasingCurve& linear() {
    static const QEasingCurve curve(QEasingCurve::Linear);
    return curve;
}

const QEasingCurve& easeOut() {
    static const QEasingCurve curve = cubicBezier({0, 0}, {0.58, 1});
    return curve;
}

const QEasingCurve& easeInEaseOut() {
    static const QEasingCurve curve = cubicBezier({0.42, 0}, {0.58, 1});
    return curve;
}

const QEasingCurve& standardEase() {
    static const QEasingCurve curve = cubicBezier({0.25, 0.1}, {0.25, 1});
    return curve;
}

int milliseconds(double seconds) {
    constexpr double perSecond = 1000;
    return static_cast<int>(std::lround(seconds * perSecond));
}

QPointer<QVariantAnimation> animate(QObject* owner, const Course& course,
                                    const std::function<void(double)>& apply) {
    auto* const animation = new QVariantAnimation(owner);
    animation->setDuration(milliseconds(course.delay + course.seconds));
    animation->setStartValue(-course.delay / course.seconds);
    animation->setEndValue(1.0);
    QObject::connect(animation, &QVariantAnimation::valueChanged, owner,
                     [apply, curve = course.curve](const QVariant& value) {
                         const double time = std::max(value.toDouble(), 0.0);
                         apply(time < 1 ? curve.valueForProgress(time) : 1);
                     });
    apply(0);
    animation->start(QAbstractAnimation::DeleteWhenStopped);
    return animation;
}

} // namespace lumetry::views
