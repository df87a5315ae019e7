#pragma once

#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/windows/desktop_scale.h"
#include "platform/linux/x11/windows/screen_layout.h"

#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace lumetry::x11 {

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
