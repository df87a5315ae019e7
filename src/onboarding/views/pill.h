#pragma once

#include "onboarding/views/style.h"

#include <QMargins>
#include <QWidget>

class QLabel;

namespace lumetry::views {

/// A text on a rounded ground.
class Pill final : public QWidget {
public:
    /// Takes the label for its own.
    /// @param padding around it, in pixels
    Pill(QLabel* label, const QMargins& padding, const Box& box, QWidget* parent);

private:
    void paintEvent(QPaintEvent* event) override;

    Box box_;
};

} // namespace lumetry::views
