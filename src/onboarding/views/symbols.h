#pragma once

#include <QColor>
#include <QLabel>

class QPainter;

namespace lumetry::views {

/// The pictures of the onboarding, drawn in lines.
enum class Symbol {
    chevronLeft,
    lockFill,
    accessibility,
    rectangleDashedBadgeRecord,
    control,
    shift,
};

enum class SymbolWeight { medium, semibold };

/// Draws the symbol in the square.
void paintSymbol(QPainter& painter, Symbol symbol, const QRectF& square, const QColor& color,
                 SymbolWeight weight);

/// Shows a symbol, to assistive technology too.
class SymbolView final : public QLabel {
public:
    /// @param size of the font that the symbol goes with, in pixels
    /// @param description what it stands for
    SymbolView(Symbol symbol, double size, SymbolWeight weight, const QColor& tint,
               const QString& description, QWidget* parent);

    void setTint(const QColor& tint);
    [[nodiscard]] QColor tint() const { return tint_; }
    /// Springs up for a moment.
    void pop();
    [[nodiscard]] double scale() const { return scale_; }

private:
    void paintEvent(QPaintEvent* event) override;

    Symbol symbol_;
    SymbolWeight weight_;
    QColor tint_;
    double side_;
    double scale_ = 1;
};

} // namespace lumetry::views
