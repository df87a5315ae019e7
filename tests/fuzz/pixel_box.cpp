#include "pixels/pixel_box.h"

#include "fuzz_input.h"

using namespace lumetry;

// NOLINTNEXTLINE(readability-identifier-naming): the name that the fuzzer calls
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bitmap square = FuzzInput(data, size).picture();
    const auto box = pixelBoxIn(square, {1000, 500});
    if (!box) {
        return 0;
    }
    // A pixel of a square that is not one is as high as it is wide.
    const double reachX = pixelBoxSquareSide / 2;
    const double reachY = reachX * square.height / square.width;
    constexpr double rounding = 1e-6;
    require(square.width >= 9 && square.height >= 9);
    require(box->width >= 8 && box->height >= 8);
    require(box->minX() >= 1000 - reachX - rounding && box->maxX() <= 1000 + reachX + rounding);
    require(box->minY() >= 500 - reachY - rounding && box->maxY() <= 500 + reachY + rounding);
    require(box->minX() <= 1000 && box->maxX() >= 1000);
    require(box->minY() <= 500 && box->maxY() >= 500);
    return 0;
}
