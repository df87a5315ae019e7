#include "onboarding/views/pill.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace lumetry::views {

Pill::Pill(QLabel* label, const QMargins& padding, const Box& box, QWidget* parent)
    : QWidget(parent), box_(box) {
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(padding);
    layout->addWidget(label);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void Pill::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBox(painter, rect(), box_);
}

} // namespace lumetry::views
