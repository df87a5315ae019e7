#pragma once

#include "base/geometry.h"
#include "base/handler_list.h"
#include "base/token.h"
#include "platform/linux/wayland/connection/connection.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumetry::wayland {

/// A screen as the compositor arranges it.
struct Output {
    std::uint32_t global = 0; ///< its number among what the compositor offers
    std::string name;         ///< such as "DP-1"; empty where the compositor does not say
    Rect frame;               ///< desktop space: points, y downwards
    double scale = 1;         ///< device pixels for each point
    int bufferScale = 1;      ///< the next whole one

    friend bool operator==(const Output&, const Output&) = default;
};

/// The screens, and how they lie in desktop space, the compositor's own coordinates: points with y
/// downwards, whose origin may lie anywhere.
struct OutputLayout {
    std::vector<Output> outputs; ///< the primary one first

    /// Between desktop space and screen space; unchanged while there is no output.
    [[nodiscard]] Rect toScreenSpace(const Rect& onDesktop) const;
    [[nodiscard]] Rect fromScreenSpace(const Rect& rect) const;

    friend bool operator==(const OutputLayout&, const OutputLayout&) = default;
};

/// Knows the screens, and hears when they change.
class Outputs {
public:
    /// Waits for the compositor to describe them.
    explicit Outputs(Connection& connection);
    Outputs(const Outputs&) = delete;
    Outputs& operator=(const Outputs&) = delete;
    ~Outputs();

    [[nodiscard]] const OutputLayout& layout() const { return layout_; }
    /// The compositor's object; null when the output is gone.
    [[nodiscard]] wl_output* proxy(std::uint32_t global) const;
    /// Calls the handler whenever the layout has changed.
    [[nodiscard]] Token onChange(std::function<void()> handler) {
        return changeHandlers_.add(std::move(handler));
    }

private:
    struct Entry;
    struct OutputEvents;
    struct PlaceEvents;
    struct OrderEvents;

    void add(const Global& global);
    void describePlace(Entry& entry);
    void update();

    Connection& connection_;
    Owned<zxdg_output_manager_v1> places_;
    Owned<kde_output_order_v1> order_;
    std::vector<std::string> names_;        ///< in the order of their importance
    std::vector<std::string> pendingNames_; ///< as they come in
    std::vector<std::unique_ptr<Entry>> entries_;
    OutputLayout layout_;
    HandlerList<> changeHandlers_;
    Token offered_;
    Token withdrawn_;
    Token batches_;
};

} // namespace lumetry::wayland
