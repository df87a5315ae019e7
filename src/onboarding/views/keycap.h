#pragma once

#include "onboarding/views/motion.h"
#include "onboarding/views/symbols.h"

#include <QPixmap>
#include <QWidget>

#include <optional>

namespace lumetry::views {

class Pulse;

/// A key that lights up while it is held, and breathes while it is not. The widget is wider than
/// the cap by margin() on every side, for its glow.
class Keycap final : public QWidget {
public:
    struct Face {
        std::optional<Symbol> symbol;
        QString glyphText; ///< in place of a symbol, and what it is called
        QString name;      ///< below it; may be empty
        double glyphSize = 24;
    };

    /// @param cap its size without the margin, in pixels
    Keycap(const Face& face, const QSize& cap, QWidget* parent);

    [[nodiscard]] static int margin();
    /// Whether the key is held; it changes its looks only when that changes.
    void setActive(bool active);
    [[nodiscard]] bool isActive() const { return active_; }
    [[nodiscard]] bool isBreathing() const;
    [[nodiscard]] double glowOpacity() const { return look_.glow; }

private:
    struct Look {
        double lit = 0; ///< from resting to lit, 0 to 1
        double glow = 0;
    };

    void paintEvent(QPaintEvent* event) override;

    QSize cap_;
    QPixmap glow_;
    bool active_ = false;
    Look look_;
    Pulse* breath_;
    QPointer<QVariantAnimation> transition_;
};

} // namespace lumetry::views
