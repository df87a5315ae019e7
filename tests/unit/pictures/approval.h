#pragma once

#include <QImage>

#include <string>
#include <vector>

namespace lumetry {

/// Device pixels for each point, of everything that is drawn in this run of the program.
[[nodiscard]] double pixelRatio();

/// Fails when the picture looks other than the approved one of that name, and leaves both and what
/// differs below the build folder. With LUMETRY_APPROVE in the environment it approves the picture
/// instead.
/// @param picture opaque, in device pixels
void expectApproved(const QImage& picture, const std::string& name);

/// One below the other, with a little distance.
[[nodiscard]] QImage stacked(const std::vector<QImage>& pictures);
[[nodiscard]] QImage sideBySide(const std::vector<QImage>& pictures);

} // namespace lumetry
