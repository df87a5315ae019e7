#include "onboarding/views/page.h"

#include <QEvent>

namespace lumetry::views {
namespace {

/// What the widget takes up, without what it has around itself.
QSize countedSize(const QWidget& widget, int overlap) {
    const QSize hint = widget.sizeHint().expandedTo(widget.minimumSize());
    return hint.boundedTo(widget.maximumSize()) - QSize(2 * overlap, 2 * overlap);
}

} // namespace

Page::Page(QWidget* parent) : QWidget(parent) {}

void Page::add(QWidget* widget, int spacing, int overlap) {
    items_.push_back({widget, spacing, overlap});
}

void Page::resizeEvent(QResizeEvent* /*event*/) {
    placeItems();
}

bool Page::event(QEvent* event) {
    // A text that has changed may want another width.
    if (event->type() == QEvent::LayoutRequest) {
        placeItems();
    }
    return QWidget::event(event);
}

void Page::placeItems() {
    int whole = items_.empty() ? 0 : -items_.back().spacing;
    for (const auto& [widget, spacing, overlap] : items_) {
        whole += countedSize(*widget, overlap).height() + spacing;
    }
    int y = (height() - whole) / 2;
    for (const auto& [widget, spacing, overlap] : items_) {
        const QSize size = countedSize(*widget, overlap);
        widget->setGeometry((width() - size.width()) / 2 - overlap, y - overlap,
                            size.width() + 2 * overlap, size.height() + 2 * overlap);
        y += size.height() + spacing;
    }
}

} // namespace lumetry::views
