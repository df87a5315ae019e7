#include "onboarding/views/glow.h"

#include <QGraphicsBlurEffect>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QPainter>

#include <cmath>

namespace lumetry::views {

int glowReach(double radius) {
    return static_cast<int>(std::ceil(radius * 2));
}

QPixmap makeGlow(const QSize& size, double radius, const QColor& color,
                 const std::function<void(QPainter&)>& draw) {
    const int reach = glowReach(radius);
    const QSize whole = size + QSize(2 * reach, 2 * reach);
    QPixmap shape(whole);
    shape.fill(Qt::transparent);
    {
        QPainter painter(&shape);
        painter.translate(reach, reach);
        draw(painter);
        painter.resetTransform();
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(shape.rect(), color);
    }
    QGraphicsScene scene;
    auto* const item = new QGraphicsPixmapItem(shape);
    auto* const blur = new QGraphicsBlurEffect;
    blur->setBlurRadius(radius * 2);
    blur->setBlurHints(QGraphicsBlurEffect::QualityHint);
    item->setGraphicsEffect(blur);
    scene.addItem(item);
    QPixmap glow(whole);
    glow.fill(Qt::transparent);
    {
        QPainter painter(&glow);
        scene.render(&painter, QRectF({0, 0}, whole), QRectF({0, 0}, whole));
    }
    return glow;
}

} // namespace lumetry::views
