#include "reports.h"

#include "bench/shared/statistics.h"
#include "bench/shared/widget_factory.h"
#include "probes.h"

#include <array>
#include <cstdio>
#include <string>
#include <utility>

namespace lumetry::latency {
namespace {

using namespace bench;

void printRow(const char* what, const Cost& cost, const Cost& bare, const std::string& counts) {
    std::printf("  %-26s %7.0f us (%.2f)   %7.0f us (%.2f)   %s\n", what, cost.median,
                cost.median / bare.median, cost.slow, cost.slow / bare.slow, counts.c_str());
}

std::string countsText(const std::vector<Sample>& samples) {
    std::array<char, 128> text{};
    std::snprintf(
        text.data(), text.size(), "%.2f / %.2f / %.2f", mean(valuesOf(samples, &Sample::requests)),
        mean(valuesOf(samples, &Sample::waits)), mean(valuesOf(samples, &Sample::windowSystem)));
    return text.data();
}

} // namespace

void reportHover(int width, int height, int scale) {
    desktop::DesktopOptions options;
    options.width = width;
    options.height = height;
    options.scale = scale;
    desktop::PrivateDesktop desktop(options);
    const WidgetFactory factory(desktop, scale);
    // The same points whatever the screen's size. Those of the application are as large.
    const Rect window = {0, 0, factory.window.width / scale, factory.window.height / scale};
    const auto points = gridOver(intersect(window, {0, 0, 1280, 800}));

    BareCalls warmUp;
    probeBare(desktop, WidgetFactory::name, points, warmUp);
    BareCalls bare;
    probeBare(desktop, WidgetFactory::name, points, bare);
    const auto samples = probeSession(desktop, points);
    probeBare(desktop, WidgetFactory::name, points, bare);

    const Cost bareCost = costOf(bare.microseconds);
    std::printf("%d x %d at %d, %zu points over %s\n", width, height, scale, points.size(),
                WidgetFactory::name);
    std::printf("  %-26s %-19s   %-19s   requests / waits / X round trips\n", "",
                "median (to bare)", "95 % (to bare)");
    std::array<char, 64> calls{};
    std::snprintf(calls.data(), calls.size(), "%.2f calls", mean(bare.calls));
    printRow("bare libatspi calls", bareCost, bareCost, calls.data());
    for (const auto& [what, chosen] : {std::pair("update, next point", firstSamples(samples)),
                                       std::pair("update, same point", secondSamples(samples))}) {
        printRow(what, costOf(valuesOf(chosen, &Sample::update)), bareCost, countsText(chosen));
    }
    printRow("repaint, next point", costOf(valuesOf(firstSamples(samples), &Sample::repaint)),
             bareCost, "");
}

} // namespace lumetry::latency
