// What reading a picture of the screen costs, beside copying it once. "copies" is the time as a
// multiple of a memcpy of the same bitmap in the same run, "allocations" how often one call asks
// for memory.

#include "allocations.h"
#include "base/bitmap.h"
#include "pixels/pixel_box.h"
#include "pixels/surface.h"
#include "support/pictures/pictures.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace lumetry {
namespace {

constexpr int boxSide = 600;     ///< of the square around the pointer at two pixels a point
constexpr int surfaceSide = 400; ///< the largest picture of a surface

/// A dialog with a button in its middle, at two pixels a point.
Bitmap buttonPicture() {
    Bitmap picture = evenBitmap(boxSide, boxSide, 0xF2F2F4);
    fillRoundedRect(picture, {120, 240, 360, 120}, 16, 0x1E78E6);
    drawStrokes(picture, {180, 280, 240, 48}, 0xFFFFFF);
    return picture;
}

/// Short strokes wherever a walk goes, so that each of them has to be measured.
Bitmap specklePicture() {
    Bitmap picture = evenBitmap(boxSide, boxSide, 0xFFFFFF);
    for (int y = 0; y < boxSide; y += 30) {
        for (int x = 1; x < boxSide; x += 2) {
            fillRect(picture, {x, y, 1, 26}, 0);
        }
    }
    return picture;
}

/// A card with rounded corners and lines of text.
Bitmap textPicture() {
    Bitmap picture = evenBitmap(surfaceSide, surfaceSide, 0x202028);
    fillRoundedRect(picture, {0, 0, surfaceSide, surfaceSide}, 24, 0xFAFAFA);
    drawStrokes(picture, {40, 40, 320, 320}, 0x303030);
    return picture;
}

/// One colour with a grain of noise on all of it.
Bitmap grainPicture(std::uint32_t color) {
    Bitmap picture = evenBitmap(surfaceSide, surfaceSide, color);
    std::minstd_rand random(1);
    for (std::uint32_t& pixel : picture.pixels) {
        pixel += static_cast<std::uint32_t>(random()) & 0x070707U;
    }
    return picture;
}

/// Runs the work on the bitmap again and again, counting its allocations.
template<typename Work>
void measure(benchmark::State& state, const Work& work) {
    const std::size_t before = allocationsSoFar();
    for (auto iteration : state) {
        static_cast<void>(iteration);
        work();
    }
    state.counters["allocations"] = benchmark::Counter(
        static_cast<double>(allocationsSoFar() - before), benchmark::Counter::kAvgIterations);
}

void copy(benchmark::State& state, const Bitmap& bitmap) {
    Bitmap target = bitmap;
    measure(state, [&] {
        std::memcpy(target.pixels.data(), bitmap.pixels.data(),
                    bitmap.pixels.size() * sizeof(bitmap.pixels.front()));
        benchmark::DoNotOptimize(target.pixels.data());
        benchmark::ClobberMemory();
    });
}

void box(benchmark::State& state, const Bitmap& bitmap) {
    measure(state, [&] { benchmark::DoNotOptimize(pixelBoxIn(bitmap, {150, 150})); });
}

void surface(benchmark::State& state, const Bitmap& bitmap) {
    constexpr double side = surfaceSide;
    measure(state, [&] { benchmark::DoNotOptimize(analyzeSurfaceIn(bitmap, {side, side}, 1)); });
}

/// Prints each benchmark as usual and at the end the ratios to the copies.
class RatioReporter final : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                times_[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void Finalize() override {
        std::printf("\nIn copies of the same bitmap (medians of all repetitions)\n");
        for (const auto& [name, times] : times_) {
            const auto copied = times_.find("copy/" + name.substr(0, name.find('/')));
            if (copied != times_.end()) {
                std::printf("%-20s %6.2f\n", name.c_str(), median(times) / median(copied->second));
            }
        }
    }

private:
    static double median(std::vector<double> times) {
        std::ranges::sort(times);
        return times[times.size() / 2];
    }

    std::map<std::string, std::vector<double>> times_;
};

void registerAll() {
    const Bitmap button = buttonPicture();
    const Bitmap text = textPicture();
    using benchmark::RegisterBenchmark;
    RegisterBenchmark("copy/box", copy, button);
    RegisterBenchmark("box/button", box, button);
    RegisterBenchmark("box/speckles", box, specklePicture());
    RegisterBenchmark("box/photo", box, photoLikeBitmap(boxSide, boxSide));
    RegisterBenchmark("copy/surface", copy, text);
    RegisterBenchmark("surface/even", surface, evenBitmap(surfaceSide, surfaceSide, 0xFAFAFA));
    RegisterBenchmark("surface/text", surface, text);
    RegisterBenchmark("surface/grain", surface, grainPicture(0x808080));
    // Around a border between two levels of each channel: eight keys side by side.
    RegisterBenchmark("surface/eight keys", surface, grainPicture(0x7C7C7C));
    RegisterBenchmark("surface/photo", surface, photoLikeBitmap(surfaceSide, surfaceSide));
}

} // namespace
} // namespace lumetry

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    lumetry::registerAll();
    lumetry::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
