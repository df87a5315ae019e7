#pragma once

#include <QLayout>

namespace lumetry::views {

/// Has a layout place a widget at the size it asks for, in the middle of its cell, as if it ended
/// before its edges: what it has around itself, such as a glow, lies over its neighbours.
class OverlappingItem final : public QWidgetItem {
public:
    /// @param overlap how far the widget reaches beyond what counts on every side, in pixels
    OverlappingItem(QWidget* widget, int overlap);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSize() const override { return sizeHint(); }
    [[nodiscard]] QSize maximumSize() const override {
        return {QLAYOUTSIZE_MAX, QLAYOUTSIZE_MAX}; // of the cell
    }
    [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }
    [[nodiscard]] bool hasHeightForWidth() const override { return false; }
    void setGeometry(const QRect& cell) override;

private:
    QSize around_;
};

} // namespace lumetry::views
