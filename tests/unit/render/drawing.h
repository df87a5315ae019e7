#pragma once

#include "platform/display_list.h"
#include "render/overlay_view.h"
#include "support/fake_platform/fake_windows.h"

#include <vector>

namespace lumetry {

/// What the view draws in a window of that frame.
inline DisplayList drawn(OverlayView& view, const Rect& windowFrame = {0, 0, 1000, 800}) {
    const FixedTextMetrics metrics;
    RecordingCanvas canvas(metrics);
    view.draw(canvas, windowFrame);
    return canvas.take();
}

/// The commands of one kind, in drawing order.
template<typename Command>
std::vector<Command> commandsOf(const DisplayList& list) {
    std::vector<Command> commands;
    for (const DrawCommand& each : list) {
        if (const auto* command = std::get_if<Command>(&each)) {
            commands.push_back(*command);
        }
    }
    return commands;
}

} // namespace lumetry
