#pragma once

#include "base/geometry.h"
#include "platform/ax_ui_element.h"
#include "platform/platform.h"
#include "probe/probe_state.h"

#include <sys/types.h>

#include <optional>

namespace lumetry {

/// A window of another application.
struct WindowHit {
    pid_t pid = 0; ///< of the window's owner
    Rect bounds;   ///< accessibility space

    friend bool operator==(const WindowHit&, const WindowHit&) = default;
};

/// The window of another application under a point of accessibility space: the frontmost normal
/// window, or where there is none the frontmost floating panel of an application with a place in
/// the task bar. Absent when there is neither.
[[nodiscard]] std::optional<WindowHit> topWindowInfo(const Platform& platform,
                                                     const ProbeState& state, Point at);

/// The element under a point of accessibility space: the window's application is asked, or the
/// whole desktop when there is no window. A Chromium-based application that fails to answer, or
/// answers with an element that nearly covers the window, is woken for later samples.
[[nodiscard]] std::optional<AXUIElement> axElementAt(const Platform& platform, ProbeState& state,
                                                     Point at,
                                                     const std::optional<WindowHit>& window);

/// Whether the frame takes up at least nine tenths of the bounds in width and in height, as that of
/// a page without a tree does in its window.
[[nodiscard]] bool nearlyCovers(const Rect& frame, const Rect& bounds);

} // namespace lumetry
