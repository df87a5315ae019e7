#pragma once

#include "rig/x_connection.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::desktop {

/// What Lumetry's overlay shows, in its own words.
struct OverlayReadout {
    struct Row {
        std::string label;
        std::string value;

        friend bool operator==(const Row&, const Row&) = default;
    };

    bool exitTag = false;
    /// Empty when there is no glance.
    std::string header;
    std::vector<Row> rows;
    /// Of measure mode, such as "24px".
    std::vector<std::string> distances;

    friend bool operator==(const OverlayReadout&, const OverlayReadout&) = default;

    [[nodiscard]] std::optional<std::string> value(const std::string& label) const;
    /// In one line: "Button · Save: size 80 × 32, padding 8"; "24px, 8px"; "nothing".
    [[nodiscard]] std::string line() const;
};

/// @param texts as drawn, in drawing order: "esc" and "exit" of the exit tag; then the glance's
/// header and the label and value of each row, or the distances of measure mode
[[nodiscard]] OverlayReadout parseOverlayTexts(std::vector<std::string> texts);

/// Reads the overlay of a running Lumetry from outside: the texts that its window carries in the
/// property _LUMETRY_TEXT, brought up to date after each repaint.
class OverlayReader {
public:
    explicit OverlayReader(const XConnection& server) : server_(server) {}

    /// The overlay's window while it is shown.
    [[nodiscard]] std::optional<xcb_window_t> window() const;
    /// The texts as drawn, in drawing order. Absent while no overlay is shown or it has not
    /// painted yet.
    [[nodiscard]] std::optional<std::vector<std::string>> texts() const;
    [[nodiscard]] std::optional<OverlayReadout> readout() const;

    /// Waits until the overlay shows what is wanted and returns it. Throws std::runtime_error that
    /// says what it showed last.
    [[nodiscard]] OverlayReadout
    waitFor(const std::string& what,
            const std::function<bool(const OverlayReadout&)>& wanted) const;
    /// Waits for the glance with that header.
    [[nodiscard]] OverlayReadout waitForHeader(const std::string& header) const;

private:
    const XConnection& server_;
};

} // namespace lumetry::desktop
