#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace lumetry::desktop {

/// Rearranges the outputs of KWin, as the display settings do. Each call returns when KWin says
/// that it has been applied; throws std::runtime_error when it is not.
/// @param socket the path of the compositor's socket
/// @param output its place among the compositor's outputs
/// @{
void setOutputScale(const std::string& socket, std::size_t output, double scale);
/// @param transform as in wl_output: quarters of a turn, 4 more where it is flipped
void setOutputTransform(const std::string& socket, std::size_t output, int transform);
void setOutputEnabled(const std::string& socket, std::size_t output, bool enabled);
/// @param places of all outputs, the primary one first
void setOutputOrder(const std::string& socket, const std::vector<std::size_t>& places);
/// @}

} // namespace lumetry::desktop
