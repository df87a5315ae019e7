#pragma once

#include "support/processes/child_process.h"
#include "support/real_desktop/accessible_tree.h"
#include "support/real_desktop/overlay_reader.h"
#include "support/real_desktop/private_desktop.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace lumetry::desktop {

/// An element of the application to lead the pointer to: the first one of that role and name that
/// is shown and not greyed out.
struct Stop {
    std::string picture;
    std::string role;
    std::string name; ///< empty: any
};

/// A desktop with an application and Lumetry over it, and a hand on the mouse.
class Tour {
public:
    /// Throws std::runtime_error when something does not come up.
    Tour(const std::filesystem::path& lumetry, std::filesystem::path pictures);
    Tour(const Tour&) = delete;
    Tour& operator=(const Tour&) = delete;
    ~Tour() = default;

    /// Goes round. Throws std::runtime_error when Lumetry shows nothing.
    void run();

private:
    void hover(const Stop& stop);
    void measure(const Stop& from, const Stop& to);
    void leave();
    void moveTo(const Stop& stop);
    /// Waits until the overlay shows something that is wanted, is not what it showed at the last
    /// stop, and stays.
    [[nodiscard]] OverlayReadout
    awaitReadout(const std::string& what, const std::function<bool(const OverlayReadout&)>& wanted);
    /// Throws std::runtime_error when Lumetry no longer runs.
    void requireLumetry();
    void takePicture(const std::string& name, const std::string& line);

    PrivateDesktop desktop_;
    std::filesystem::path pictures_;
    ChildProcess application_;
    std::optional<Accessible> tree_;
    std::optional<ChildProcess> lumetry_;
    OverlayReader overlay_;
    OverlayReadout shown_;
    int pictureCount_ = 0;
};

} // namespace lumetry::desktop
