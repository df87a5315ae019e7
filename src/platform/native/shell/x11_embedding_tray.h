#pragma once

#include "platform/linux/x11/desktop.h"
#include "platform/qt/widgets/trays.h"

namespace lumetry {

/// The X server's tray.
class X11EmbeddingTray final : public EmbeddingTray {
public:
    /// @param desktop outlives it
    explicit X11EmbeddingTray(X11Desktop& desktop) : desktop_(desktop) {}

    [[nodiscard]] bool isPresent() override { return desktop_.hasSystemTray(); }
    [[nodiscard]] Token onChange(std::function<void()> handler) override {
        return desktop_.onSystemTrayChange(std::move(handler));
    }
    [[nodiscard]] std::optional<QColor> foreground() override {
        const auto color = desktop_.systemTrayForeground();
        return color ? std::optional(QColor::fromRgbF(static_cast<float>(color->red),
                                                      static_cast<float>(color->green),
                                                      static_cast<float>(color->blue)))
                     : std::nullopt;
    }

private:
    X11Desktop& desktop_;
};

} // namespace lumetry
