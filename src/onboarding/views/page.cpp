#include "onboarding/views/page.h"

#include "onboarding/views/overlap.h"

#include <QVBoxLayout>

namespace lumetry::views {

Page::Page(QWidget* parent) : QWidget(parent), column_(new QVBoxLayout(this)) {
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(0);
    column_->setAlignment(Qt::AlignVCenter);
}

void Page::add(QWidget* widget, int spacing, int overlap) {
    column_->addItem(new OverlappingItem(widget, overlap));
    column_->addSpacing(spacing);
}

} // namespace lumetry::views
