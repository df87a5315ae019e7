#pragma once

#include <QEasingCurve>
#include <QPointer>
#include <QVariantAnimation>

#include <functional>

namespace lumetry::views {

/// How what moves gathers speed and loses it.
[[nodiscard]] const QEasingCurve& linear();
[[nodiscard]] const QEasingCurve& easeOut();
[[nodiscard]] const QEasingCurve& easeInEaseOut();
/// For changes that ask for none of the others.
[[nodiscard]] const QEasingCurve& standardEase();

struct Course {
    double seconds = 0;
    QEasingCurve curve;
    double delay = 0; ///< in seconds, during which the share is 0
};

[[nodiscard]] int milliseconds(double seconds);

/// Starts an animation, which goes when it ends or its owner does.
/// @param apply is called with every new share of the way, from 0 at once to 1 at the end
QPointer<QVariantAnimation> animate(QObject* owner, const Course& course,
                                    const std::function<void(double)>& apply);

} // namespace lumetry::views
