#pragma once

#include "base/geometry.h"
#include "platform/linux/windows/root_space.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/windows/desktop_scale.h"
#include "platform/linux/x11/windows/record.h"
#include "platform/window_server.h"

#include <functional>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace lumetry::x11 {

/// How the screens lie on the root window. All rectangles are in its coordinates: device pixels, y
/// downwards. Accessibility space and screen space are in points.
struct ScreenLayout {
    Rect root;
    std::vector<Rect> screens; ///< the primary one first; never empty
    double scale = 1;          ///< pixels for each point

    [[nodiscard]] const Rect& primary() const { return screens.front(); }
    [[nodiscard]] Point toScreenSpace(Point onRoot) const;
    [[nodiscard]] Rect toScreenSpace(const Rect& onRoot) const;
    [[nodiscard]] Rect fromScreenSpace(const Rect& rect) const;
    [[nodiscard]] RootSpace space() const { return {primary().origin(), scale}; }

    friend bool operator==(const ScreenLayout&, const ScreenLayout&) = default;
};

/// What panels leave of a screen.
[[nodiscard]] Rect withoutStruts(const Rect& screen, const Rect& root,
                                 std::span<const Strut> struts);

/// All screens as the rest of the program sees them.
/// @param workArea what the window manager says is left, for when no panel says what it keeps
[[nodiscard]] std::vector<Screen> describeScreens(const ScreenLayout& layout,
                                                  std::span<const Strut> struts,
                                                  const std::optional<Rect>& workArea);

/// Knows how the screens lie and how dense they are, from the first question on until the server
/// says that it changed.
class Screens {
public:
    /// @param chosenScale as in DesktopScale
    Screens(Connection& connection, std::optional<double> chosenScale);
    Screens(const Screens&) = delete;
    Screens& operator=(const Screens&) = delete;
    ~Screens() = default;

    [[nodiscard]] const ScreenLayout& layout();
    /// Calls the handler when it is heard that the screens have become denser or less so.
    [[nodiscard]] Token onScaleChange(std::function<void()> handler) {
        return scale_.onChange(std::move(handler));
    }

private:
    void listen();
    void readLayout();
    [[nodiscard]] std::vector<Rect> readMonitors();

    Connection& connection_;
    DesktopScale scale_;
    ScreenLayout layout_;
    bool isCurrent_ = false;
    bool listening_ = false;
    Token rootEvents_;
    Token events_;
};

} // namespace lumetry::x11
