#pragma once

#include "base/geometry.h"
#include "platform/ax_ui_element.h"

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry {

class Applications;
class WindowServer;

/// The attribute of that name when it is text; absent when it cannot be read or is something else.
[[nodiscard]] std::optional<std::string> axString(const AXUIElement& element,
                                                  std::string_view name);
/// The element's frame in accessibility space, from "AXPosition" and "AXSize". Absent when either
/// cannot be read, or when the width or height is not positive.
[[nodiscard]] std::optional<Rect> axFrame(const AXUIElement& element);
/// The element's "AXParent"; absent when there is none or it is not an element.
[[nodiscard]] std::optional<AXUIElement> axParent(const AXUIElement& element);
/// The element's "AXChildren"; absent when they cannot be read or are not all elements.
[[nodiscard]] std::optional<std::vector<AXUIElement>> axChildren(const AXUIElement& element);

/// The bundle identifier of the process, or "pid:" and its number where it has none.
[[nodiscard]] std::string bundleID(Applications& applications, pid_t pid);

/// The height in points by which accessibility space and screen space are flipped into each other:
/// that of the screen at the origin, else of the first one, else 0.
[[nodiscard]] double primaryDisplayHeight(WindowServer& windowServer);

/// By how many points a frame may reach beyond what it is the frame of: where points are not whole
/// device pixels, applications round to whole ones, and frames that touch may seem to overlap by
/// one.
[[nodiscard]] double frameRounding(WindowServer& windowServer);

} // namespace lumetry
