#pragma once

#include "base/geometry.h"
#include "rig/accessible_tree.h"
#include "rig/private_desktop.h"

namespace lumetry::bench {

/// A GTK application with widgets of all kinds, at the top-left of the screen.
class WidgetFactory {
public:
    static constexpr const char* name = "gtk3-widget-factory";

    /// Returns once its elements can be asked for.
    /// @param scale pixels for each point
    explicit WidgetFactory(desktop::PrivateDesktop& desktop, int scale = 1);

private:
    desktop::ChildProcess process_;

public:
    desktop::AccessibleTree tree;
    Rect window; ///< pixels of the root window
};

} // namespace lumetry::bench
