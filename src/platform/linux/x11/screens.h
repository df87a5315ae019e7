#pragma once

#include "platform/linux/x11/connection.h"
#include "platform/linux/x11/screen_layout.h"

#include <optional>

namespace lumetry::x11 {

/// Knows how the screens lie, from the first question on until the server says that it changed.
class Screens {
public:
    explicit Screens(Connection& connection);
    Screens(const Screens&) = delete;
    Screens& operator=(const Screens&) = delete;
    ~Screens() = default;

    [[nodiscard]] const ScreenLayout& layout();

private:
    void listen();
    [[nodiscard]] std::vector<Rect> readMonitors();

    Connection& connection_;
    std::optional<ScreenLayout> layout_;
    ScreenLayout lastKnown_;
    bool listening_ = false;
    Token rootEvents_;
    Token events_;
};

} // namespace lumetry::x11
