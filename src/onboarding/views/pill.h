#pragma once

#include <QColor>
#include <QMargins>
#include <QWidget>

class QLabel;

namespace lumetry::views {

/// A text on a rounded ground.
class Pill final : public QWidget {
public:
    struct Look {
        QMargins padding; ///< in pixels
        QColor fill;
        QColor border; ///< transparent: none
        double cornerRadius = 0;
    };

    /// Takes the label for its own.
    Pill(QLabel* label, const Look& look, QWidget* parent);

private:
    void paintEvent(QPaintEvent* event) override;

    Look look_;
};

} // namespace lumetry::views
