#include "pixels/surface.h"

#include "base/color_metrics.h"
#include "fuzz_input.h"

using namespace lumetry;

// NOLINTNEXTLINE(readability-identifier-naming): the name that the fuzzer calls
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const double pixelsPerPoint = (1 + input.byte()) / 256.0;
    const Bitmap picture = input.picture();
    const Size points = {picture.width / pixelsPerPoint, picture.height / pixelsPerPoint};
    const SurfaceInfo surface = analyzeSurfaceIn(picture, points, pixelsPerPoint);
    require(surface.fill || (!surface.ink && !surface.radius));
    if (surface.ink) {
        require(wcagContrast(*surface.ink, *surface.fill) >= 1.6);
    }
    if (surface.radius) {
        require(*surface.radius >= 2);
        require(*surface.radius <= std::min(points.width, points.height) / 2 + 2.5);
    }
    return 0;
}
