#pragma once

#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

namespace lumetry::views {

/// A measuring line that grows from its middle, with its length in a pill.
class DimensionLineView final : public QWidget {
public:
    explicit DimensionLineView(QWidget* parent);

    /// Empties the line, waits, and lets it grow.
    /// @param seconds to wait
    void animateIn(double seconds);

    /// How far the line has grown, from 0 to 1.
    [[nodiscard]] double progress() const { return progress_; }
    /// What the pill says.
    [[nodiscard]] QString label() const;
    [[nodiscard]] QSize sizeHint() const override;

private:
    void paintEvent(QPaintEvent* event) override;

    double progress_ = 1;
    QPointer<QVariantAnimation> growth_;
};

} // namespace lumetry::views
