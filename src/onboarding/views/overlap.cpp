#include "onboarding/views/overlap.h"

#include <QWidget>

namespace lumetry::views {

OverlappingItem::OverlappingItem(QWidget* widget, int overlap)
    : QWidgetItem(widget), around_(2 * overlap, 2 * overlap) {}

QSize OverlappingItem::sizeHint() const {
    return QWidgetItem::sizeHint() - around_;
}

void OverlappingItem::setGeometry(const QRect& cell) {
    const QSize free = cell.size() - sizeHint();
    const QRect counted(cell.topLeft() + QPoint(free.width() / 2, free.height() / 2), sizeHint());
    const int overlap = around_.width() / 2;
    widget()->setGeometry(counted.adjusted(-overlap, -overlap, overlap, overlap));
}

} // namespace lumetry::views
