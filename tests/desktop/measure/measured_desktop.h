#pragma once

#include "rig/accessible_tree.h"
#include "rig/private_desktop.h"
#include "rig/processes/child_process.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace lumetry::desktop {

using Json = nlohmann::json;

/// A desktop on which lumetry-measure is run.
class MeasuredDesktop {
public:
    explicit MeasuredDesktop(const DesktopOptions& options = {}) : desktop(options) {}

    /// Starts gtk3-widget-factory and waits until its elements can be asked for.
    [[nodiscard]] ChildProcess startWidgetFactory();
    [[nodiscard]] Accessible element(const std::string& role, const std::string& name) const;

    [[nodiscard]] FinishedProgram measure(const std::vector<std::string>& arguments) const;
    /// What is said of a point as JSON; null when it is not measured.
    [[nodiscard]] Json measureAt(Point at) const;

    PrivateDesktop desktop;
};

/// The value of a row; absent when it is not shown.
[[nodiscard]] std::optional<std::string> rowValue(const Json& measured, const std::string& label);
/// The middle of the element on screen. Throws std::runtime_error when it is nowhere.
[[nodiscard]] Point middleOf(const Accessible& element);
[[nodiscard]] std::vector<std::string> arguments(Point at);

} // namespace lumetry::desktop
