#pragma once

#include "album.h"
#include "rig/accessible_tree.h"
#include "rig/overlay_reader.h"
#include "rig/private_desktop.h"
#include "rig/processes/child_process.h"

#include <functional>
#include <optional>
#include <string>

namespace lumetry::desktop {

/// Lumetry inspecting on a desktop, and a hand on the mouse. Throws std::runtime_error when
/// something does not come up, or Lumetry shows nothing.
class Inspection {
public:
    /// @param lumetry the program
    Inspection(PrivateDesktop& desktop, const std::string& lumetry, Album& album);

    /// Leads the pointer there and takes a picture of the glance.
    /// @param header that the glance is to show; empty: any
    void hover(const Rect& place, const std::string& picture, const std::string& header = "");
    /// Measures from one to the other with Alt held, and takes a picture.
    void measure(const Rect& from, const Rect& to, const std::string& picture);
    /// Ends inspect mode by Escape, and takes a picture of what is left.
    void leave(const std::string& picture);

private:
    void moveTo(const Rect& place);
    /// Waits until the overlay shows something that is wanted, is not what it showed at the last
    /// stop, and stays. An application may take a while to tell what it holds: the pointer moves a
    /// little meanwhile, as a hand does.
    [[nodiscard]] OverlayReadout
    awaitReadout(const std::string& what, const std::function<bool(const OverlayReadout&)>& wanted);
    /// Throws std::runtime_error when Lumetry no longer runs.
    void requireLumetry();

    PrivateDesktop& desktop_;
    Album& album_;
    std::optional<ChildProcess> lumetry_;
    OverlayReader overlay_;
    OverlayReadout shown_;
};

/// The pictures over an application: button, entry, check box, list, tab, the distance between two,
/// and what is left after Escape.
void tourApplication(const std::string& lumetry, Album& album);

/// The pictures over a page in a browser.
void tourPage(const std::string& lumetry, Album& album);
/// A button of that page on a screen of twice the density.
void tourDensePage(const std::string& lumetry, Album& album);

} // namespace lumetry::desktop
