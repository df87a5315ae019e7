#pragma once

#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

#include <vector>

namespace lumetry::views {

/// A dash for each step, the current one long and pink.
class StepIndicator final : public QWidget {
public:
    StepIndicator(int count, QWidget* parent);

    /// The dashes move there.
    void setStep(int step);
    /// How wide a dash is now, in pixels.
    [[nodiscard]] double dashWidth(int dash) const;

private:
    void paintEvent(QPaintEvent* event) override;

    std::vector<double> shares_; ///< of each dash's way from other to current
    QPointer<QVariantAnimation> animation_;
};

} // namespace lumetry::views
