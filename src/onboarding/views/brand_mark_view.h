#pragma once

#include <QPainterPath>
#include <QPixmap>
#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

#include <array>
#include <vector>

namespace lumetry::views {

class Pulse;

/// The program's mark: draws itself in, blooms, floats, and spreads its corners under the pointer.
/// The widget is wider than the mark by margin() on every side, for its glow.
class BrandMarkView final : public QWidget {
public:
    static constexpr std::size_t strokeCount = 5;

    /// @param markSize the side of its square, in pixels
    BrandMarkView(double markSize, QWidget* parent);

    [[nodiscard]] static int margin();
    /// From nothing to the whole mark.
    void playEntrance();
    void setFocused(bool focused);

    /// How much of a stroke is drawn, from 0 to 1.
    [[nodiscard]] double strokeEnd(std::size_t stroke) const { return strokeEnds_.at(stroke); }
    /// How far the corners are from their places along either axis, in pixels.
    [[nodiscard]] double spread() const { return spread_; }
    [[nodiscard]] double glowOpacity() const { return glow_; }

private:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void showEntrance(double seconds);
    /// The glow once nothing moves.
    [[nodiscard]] double lastingGlow() const;
    [[nodiscard]] QPointF offset(std::size_t stroke) const;

    double markSize_;
    std::array<std::vector<QPainterPath>, strokeCount> strokes_; ///< each of one or more lines
    std::array<QPixmap, strokeCount> glows_;
    std::array<double, strokeCount> strokeEnds_{};
    double glow_ = 0;
    double spread_ = 0;
    double drift_ = 0; ///< downwards, in pixels
    bool focused_ = false;
    Pulse* float_;
    QPointer<QVariantAnimation> entrance_;
    QPointer<QVariantAnimation> focusing_;
};

} // namespace lumetry::views
