#pragma once

#include "rig/accessible_tree.h"
#include "rig/overlay_reader.h"
#include "rig/private_desktop.h"
#include "rig/processes/child_process.h"
#include "rig/screenshot.h"

#include <string>

namespace lumetry::desktop {

/// A private desktop in which the program under test inspects.
class InspectedDesktop {
public:
    explicit InspectedDesktop(const DesktopOptions& options = {});

    /// Starts gtk3-widget-factory with its window at the top-left and waits until its elements can
    /// be asked for.
    /// @param variables added to its environment
    [[nodiscard]] ChildProcess startWidgetFactory(const Environment& variables = {});
    /// Starts the program as it is after the onboarding, and waits until its overlay is shown.
    [[nodiscard]] ChildProcess startLumetry();

    /// Moves the pointer to the middle of the element and waits for its glance.
    OverlayReadout hover(const Accessible& element, const std::string& header);

    PrivateDesktop desktop;
    AccessibleTree tree{desktop.accessibilityBusAddress()};
    OverlayReader overlay{desktop.server()};
};

/// What is wanted of every side of an outline: its line where the element ends, and neither inside
/// nor outside of it. Empty when all is right, else what is not.
[[nodiscard]] std::string outlineProblem(const Bitmap& screen, const Rect& element);

/// The rows "size" says of an element of that size.
[[nodiscard]] std::string sizeText(const Rect& element);

} // namespace lumetry::desktop
