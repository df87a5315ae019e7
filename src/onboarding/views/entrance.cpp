#include "onboarding/views/entrance.h"

#include "onboarding/views/motion.h"

#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QPainter>

namespace lumetry::views {
namespace {

/// Shows its widget higher and fainter.
class DroppingEffect final : public QGraphicsEffect {
public:
    /// @param share of the way down
    void setShare(double share) {
        share_ = share;
        update();
    }

    [[nodiscard]] QRectF boundingRectFor(const QRectF& rect) const override {
        return rect.adjusted(0, -entranceDrop, 0, 0);
    }

private:
    void draw(QPainter* painter) override {
        QPoint offset;
        const QPixmap picture = sourcePixmap(Qt::LogicalCoordinates, &offset, NoPad);
        painter->setOpacity(share_);
        painter->drawPixmap(QPointF(offset) - QPointF(0, entranceDrop * (1 - share_)), picture);
    }

    double share_ = 0;
};

/// Has the widget shown with the effect until the course is through.
template<typename Effect>
void animateEffect(QWidget& widget, Effect* effect, const Course& course,
                   void (Effect::*set)(double)) {
    widget.setGraphicsEffect(effect); // which the widget owns from now on
    const auto animation =
        animate(&widget, course, [effect, set](double share) { (effect->*set)(share); });
    QObject::connect(animation, &QVariantAnimation::finished, &widget,
                     [&widget] { widget.setGraphicsEffect(nullptr); });
}

} // namespace

void playEntrance(const std::vector<QWidget*>& widgets) {
    constexpr double seconds = 0.5;
    constexpr double staggerSeconds = 0.07;
    double delay = 0;
    for (QWidget* const widget : widgets) {
        animateEffect(*widget, new DroppingEffect, {seconds, easeOut(), delay},
                      &DroppingEffect::setShare);
        delay += staggerSeconds;
    }
}

void fadeIn(QWidget& widget, double seconds) {
    animateEffect(widget, new QGraphicsOpacityEffect, {seconds, standardEase()},
                  &QGraphicsOpacityEffect::setOpacity);
}

void fadeOutAndDelete(QWidget* widget, double seconds) {
    QPixmap picture(widget->size() * widget->devicePixelRatio());
    picture.setDevicePixelRatio(widget->devicePixelRatio());
    picture.fill(Qt::transparent);
    widget->render(&picture, {}, {}, QWidget::DrawChildren);
    auto* const fading = new QLabel(widget->parentWidget());
    fading->setPixmap(picture);
    fading->setAttribute(Qt::WA_TransparentForMouseEvents);
    fading->setGeometry(widget->geometry());
    fading->lower();
    fading->show();
    delete widget;
    auto* const effect = new QGraphicsOpacityEffect;
    fading->setGraphicsEffect(effect);
    const auto animation = animate(fading, {seconds, standardEase()},
                                   [effect](double share) { effect->setOpacity(1 - share); });
    QObject::connect(animation, &QVariantAnimation::finished, fading, &QObject::deleteLater);
}

} // namespace lumetry::views
