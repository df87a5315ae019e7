#pragma once

#include "base/token.h"

#include <QColor>

#include <functional>
#include <optional>

namespace lumetry {

/// The XEmbed tray, as the window system knows it.
class EmbeddingTray {
public:
    EmbeddingTray() = default;
    EmbeddingTray(const EmbeddingTray&) = delete;
    EmbeddingTray& operator=(const EmbeddingTray&) = delete;
    virtual ~EmbeddingTray() = default;

    [[nodiscard]] virtual bool isPresent() = 0;
    /// Calls the handler whenever one has come or gone.
    [[nodiscard]] virtual Token onChange(std::function<void()> handler) = 0;
    /// What it wants icons to be drawn in; absent where it does not say.
    [[nodiscard]] virtual std::optional<QColor> foreground() = 0;
};

/// Where the window system has none.
class NoEmbeddingTray final : public EmbeddingTray {
public:
    [[nodiscard]] bool isPresent() override { return false; }
    [[nodiscard]] Token onChange(std::function<void()> /*handler*/) override { return {}; }
    [[nodiscard]] std::optional<QColor> foreground() override { return std::nullopt; }
};

} // namespace lumetry
