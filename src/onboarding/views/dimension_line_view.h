#pragma once

#include <QElapsedTimer>
#include <QTimer>
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

    /// The progress after that share of the time.
    [[nodiscard]] static double grown(double time);

private:
    void paintEvent(QPaintEvent* event) override;
    void grow();
    void setProgress(double progress);

    double progress_ = 1;
    QTimer delayTimer_;
    QTimer animTimer_;
    QElapsedTimer clock_;
};

} // namespace lumetry::views
