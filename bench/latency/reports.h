#pragma once

namespace lumetry::latency {

/// Lumetry's session against the bare accessibility calls at the same points, over a real
/// application on a screen of that size.
/// @param width, height in pixels
/// @param scale pixels for each point
void reportHover(int width, int height, int scale = 1);

/// What new elements cost by their class, and what of it is accessibility, capture, analysis and
/// drawing: over a GTK application and over a page in Chromium, where a list of 300 items is
/// compared with a button.
void reportBuckets();

/// In a Plasma session on Wayland: from the pointer's move to the overlay's commit.
void reportPlasma();

/// What inspect mode costs while the pointer rests.
void reportRest();

} // namespace lumetry::latency
