#include "onboarding/views/entrance.h"

#include <QGraphicsEffect>
#include <QPainter>
#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace lumetry::views {
namespace {

constexpr double rise = 16; // pixels
constexpr double entranceSeconds = 0.5;
constexpr double staggerSeconds = 0.07;

int milliseconds(double seconds) {
    constexpr double perSecond = 1000;
    return static_cast<int>(seconds * perSecond);
}

/// Shows its widget lower and fainter.
class RisingEffect final : public QGraphicsEffect {
public:
    using QGraphicsEffect::QGraphicsEffect;

    void set(double drop, double opacity) {
        drop_ = drop;
        opacity_ = opacity;
        updateBoundingRect();
    }

    [[nodiscard]] QRectF boundingRectFor(const QRectF& rect) const override {
        return rect.adjusted(0, 0, 0, rise);
    }

private:
    void draw(QPainter* painter) override {
        QPoint offset;
        const QPixmap picture = sourcePixmap(Qt::LogicalCoordinates, &offset, NoPad);
        painter->setOpacity(opacity_);
        painter->drawPixmap(QPointF(offset) + QPointF(0, drop_), picture);
    }

    double drop_ = rise;
    double opacity_ = 0;
};

/// A picture that gets fainter.
class FadingPicture final : public QWidget {
public:
    FadingPicture(QPixmap picture, QWidget* parent)
        : QWidget(parent), picture_(std::move(picture)) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

    void setOpacity(double opacity) {
        opacity_ = opacity;
        update();
    }

private:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setOpacity(opacity_);
        painter.drawPixmap(0, 0, picture_);
    }

    QPixmap picture_;
    double opacity_ = 1;
};

} // namespace

void playEntrance(const std::vector<QWidget*>& widgets, double fadeSeconds) {
    for (std::size_t i = 0; i < widgets.size(); ++i) {
        QWidget* const widget = widgets[i];
        auto* const effect = new RisingEffect;
        widget->setGraphicsEffect(effect); // which the widget owns from now on
        const double delay = staggerSeconds * static_cast<double>(i);
        const double length = delay + entranceSeconds;
        auto* const animation = new QVariantAnimation(widget);
        animation->setDuration(milliseconds(length));
        animation->setStartValue(0.0);
        animation->setEndValue(length);
        QObject::connect(animation, &QVariantAnimation::valueChanged, effect,
                         [effect, delay, fadeSeconds](const QVariant& value) {
                             static const QEasingCurve easeOut(QEasingCurve::OutQuad);
                             const double time = value.toDouble();
                             const double share = easeOut.valueForProgress(
                                 std::clamp((time - delay) / entranceSeconds, 0.0, 1.0));
                             const double fade =
                                 fadeSeconds > 0 ? std::min(time / fadeSeconds, 1.0) : 1.0;
                             effect->set(rise * (1 - share), share * fade);
                         });
        QObject::connect(animation, &QVariantAnimation::finished, widget,
                         [widget] { widget->setGraphicsEffect(nullptr); });
        animation->start(QAbstractAnimation::DeleteWhenStopped);
    }
}

void fadeOutAndDelete(QWidget* widget, double seconds) {
    QPixmap picture(widget->size() * widget->devicePixelRatio());
    picture.setDevicePixelRatio(widget->devicePixelRatio());
    picture.fill(Qt::transparent);
    widget->render(&picture, {}, {}, QWidget::DrawChildren);
    auto* const fading = new FadingPicture(std::move(picture), widget->parentWidget());
    fading->setGeometry(widget->geometry());
    fading->show();
    delete widget;
    auto* const animation = new QVariantAnimation(fading);
    animation->setDuration(milliseconds(seconds));
    animation->setStartValue(1.0);
    animation->setEndValue(0.0);
    QObject::connect(animation, &QVariantAnimation::valueChanged, fading,
                     [fading](const QVariant& value) { fading->setOpacity(value.toDouble()); });
    QObject::connect(animation, &QVariantAnimation::finished, fading, &QObject::deleteLater);
    animation->start();
}

} // namespace lumetry::views
