#include "onboarding/views/pill.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace lumetry::views {

Pill::Pill(QLabel* label, const Look& look, QWidget* parent) : QWidget(parent), look_(look) {
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(look.padding);
    layout->addWidget(label);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void Pill::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(look_.fill);
    const bool bordered = look_.border.alpha() > 0;
    painter.setPen(bordered ? QPen(look_.border, 1) : QPen(Qt::NoPen));
    const double half = bordered ? 0.5 : 0;
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half),
                            look_.cornerRadius - half, look_.cornerRadius - half);
}

} // namespace lumetry::views
