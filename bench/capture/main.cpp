// What reading the screen below the overlay costs, on a private desktop of 5120 × 2880 pixels with
// a window that fills it and two smaller ones. "times" compares with what is named, in the same
// run; "waits" is how often one capture waits for the X server.

#include "platform/linux/loop/idle_loop.h"
#include "platform/linux/x11/desktop.h"
#include "platform/screen_capture.h"
#include "rig/private_desktop.h"
#include "rig/screenshot.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace lumetry {
namespace {

constexpr double screenWidth = 5120;
constexpr double screenHeight = 2880;
const Rect square = {2000, 1000, 300, 300};
constexpr IntSize elementSize = {400, 225};

/// Shows a window of that place and colour above all others.
xcb_window_t showWindow(const desktop::XConnection& server, const Rect& rect, std::uint32_t color) {
    const auto window = xcb_generate_id(server.get());
    xcb_create_window_value_list_t values{};
    values.background_pixel = color;
    values.override_redirect = 1;
    xcb_create_window_aux(server.get(), XCB_COPY_FROM_PARENT, window, server.root(),
                          static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
                          static_cast<std::uint16_t>(rect.width),
                          static_cast<std::uint16_t>(rect.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          server.screen().root_visual, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT,
                          &values);
    xcb_map_window(server.get(), window);
    return window;
}

void measureCapture(benchmark::State& state, X11Desktop& x11, std::uint32_t below,
                    const std::function<bool(ScreenCapture&, std::uint32_t)>& work) {
    ScreenCapture& capture = x11.screenCapture();
    if (!work(capture, below)) {
        state.SkipWithError("the screen cannot be captured");
    }
    const std::size_t before = x11.roundTrips();
    for (auto iteration : state) {
        static_cast<void>(iteration);
        benchmark::DoNotOptimize(work(capture, below));
    }
    state.counters["waits"] = benchmark::Counter(static_cast<double>(x11.roundTrips() - before),
                                                 benchmark::Counter::kAvgIterations);
}

/// Prints each benchmark as usual, and compares them when asked.
class RatioReporter final : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                const auto [known, isNew] =
                    fastest_.emplace(run.run_name.function_name, run.GetAdjustedRealTime());
                known->second = std::min(known->second, run.GetAdjustedRealTime());
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void compare(const std::string& name, const std::string& with) const {
        const auto one = fastest_.find(name);
        const auto other = fastest_.find(with);
        if (one != fastest_.end() && other != fastest_.end()) {
            std::printf("%s: %.2f times %s\n", name.c_str(), one->second / other->second,
                        with.c_str());
        }
    }

private:
    std::map<std::string, double> fastest_;
};

} // namespace
} // namespace lumetry

int main(int argc, char** argv) {
    using namespace lumetry;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    desktop::DesktopOptions options;
    options.width = static_cast<int>(screenWidth);
    options.height = static_cast<int>(screenHeight);
    options.accessibility = desktop::AccessibilityBus::none;
    const desktop::PrivateDesktop desktop(options);
    desktop.join();
    const auto& server = desktop.server();
    showWindow(server, {0, 0, screenWidth, screenHeight}, 0xFAFAFA);
    showWindow(server, {1900, 900, 300, 300}, 0x1E78E6);
    showWindow(server, {2100, 1100, 500, 500}, 0x202028);
    const std::uint32_t overlay = showWindow(server, {0, 0, screenWidth, screenHeight}, 0xFF3D8A);
    server.sync();

    IdleLoop loop;
    std::string problem;
    const auto x11 = X11Desktop::open(loop, loop, problem);
    if (!x11) {
        std::fprintf(stderr, "%s\n", problem.c_str());
        return EXIT_FAILURE;
    }
    using Work = std::function<bool(ScreenCapture&, std::uint32_t)>;
    const auto add = [&](const char* name, const Work& work) {
        benchmark::RegisterBenchmark(name, [&x11, overlay, work](benchmark::State& state) {
            measureCapture(state, *x11, overlay, work);
        })->UseRealTime();
    };
    add("square", [](ScreenCapture& capture, std::uint32_t below) {
        return capture.captureBelow(square, below).has_value();
    });
    add("pixel", [](ScreenCapture& capture, std::uint32_t below) {
        return capture.captureBelow({square.x, square.y, 5, 5}, below).has_value();
    });
    add("screen at 400x225", [](ScreenCapture& capture, std::uint32_t below) {
        return capture
            .captureBelow({0, 0, screenWidth, screenHeight}, below, elementSize, Interpolation::low)
            .has_value();
    });
    add("element of 400x225", [](ScreenCapture& capture, std::uint32_t below) {
        const Rect area = {square.x, square.y, static_cast<double>(elementSize.width),
                           static_cast<double>(elementSize.height)};
        return capture.captureBelow(area, below, elementSize, Interpolation::none).has_value();
    });
    benchmark::RegisterBenchmark("GetImage of the square", [&](benchmark::State& state) {
        for (auto iteration : state) {
            static_cast<void>(iteration);
            benchmark::DoNotOptimize(desktop::screenshot(server, square));
        }
    })->UseRealTime();

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nOf the fastest repetitions\n");
    reporter.compare("square", "GetImage of the square");
    reporter.compare("screen at 400x225", "element of 400x225");
    return EXIT_SUCCESS;
}
