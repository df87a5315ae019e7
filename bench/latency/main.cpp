// What a hover costs: Lumetry's own session against the bare accessibility calls at the same
// points, over a real application, on a small and on a large screen; and what inspect mode costs at
// rest.
//
//   lumetry_latency

#include "support/processes/child_process.h"
#include "support/real_desktop/accessible_tree.h"
#include "support/real_desktop/desktop_windows.h"
#include "support/real_desktop/overlay_reader.h"
#include "support/real_desktop/private_desktop.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace lumetry;
using namespace lumetry::desktop;

constexpr const char* factory = "gtk3-widget-factory";

/// Points of a grid over the visible part of the window, as the probes read them.
std::string gridOf(const Rect& window, int width, int height) {
    constexpr int columns = 20;
    constexpr int rows = 10;
    const Rect visible = intersect(window, {0, 0, double(width), double(height)});
    std::ostringstream points;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            points << static_cast<int>(visible.x + (column + 0.5) * visible.width / columns) << ' '
                   << static_cast<int>(visible.y + (row + 0.5) * visible.height / rows) << '\n';
        }
    }
    return points.str();
}

/// The numbers that a probe printed, one column a vector.
std::vector<std::vector<double>> columnsOf(const std::string& output) {
    std::vector<std::vector<double>> columns;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::size_t column = 0;
        for (double value = 0; fields >> value; ++column) {
            columns.resize(std::max(columns.size(), column + 1));
            columns[column].push_back(value);
        }
    }
    return columns;
}

double quantile(std::vector<double> values, double share) {
    if (values.empty()) {
        return 0;
    }
    std::ranges::sort(values);
    return values[std::min(values.size() - 1,
                           static_cast<std::size_t>(share * static_cast<double>(values.size())))];
}

double median(const std::vector<double>& values) {
    return quantile(values, 0.5);
}

double mean(const std::vector<double>& values) {
    double sum = 0;
    for (const double value : values) {
        sum += value;
    }
    return values.empty() ? 0 : sum / static_cast<double>(values.size());
}

/// Runs a probe in the desktop with the points as its input.
std::vector<std::vector<double>> runProbe(PrivateDesktop& desktop,
                                          const std::vector<std::string>& arguments,
                                          const std::string& points) {
    const auto file = desktop.folder() / "points";
    std::ofstream(file) << points;
    FILE* input = std::fopen(file.c_str(), "r");
    ProcessOptions options;
    options.environment = desktop.environment();
    options.standardInput = fileno(input);
    const auto finished = runProgram(arguments, options, std::chrono::minutes(2));
    std::fclose(input);
    if (finished.status.code != 0) {
        throw std::runtime_error(arguments.front() + ": " + finished.error);
    }
    return columnsOf(finished.output);
}

/// Every second value, beginning with that one.
std::vector<double> alternate(const std::vector<double>& values, std::size_t first) {
    std::vector<double> chosen;
    for (std::size_t i = first; i < values.size(); i += 2) {
        chosen.push_back(values[i]);
    }
    return chosen;
}

struct Cost {
    double medianMicroseconds = 0;
    double slowMicroseconds = 0; ///< 95th percentile
};

Cost costOf(const std::vector<double>& microseconds) {
    return {median(microseconds), quantile(microseconds, 0.95)};
}

void printRow(const char* what, const Cost& cost, const Cost& bare, const std::string& counts) {
    std::printf("  %-26s %7.0f us (%.2f)   %7.0f us (%.2f)   %s\n", what, cost.medianMicroseconds,
                cost.medianMicroseconds / bare.medianMicroseconds, cost.slowMicroseconds,
                cost.slowMicroseconds / bare.slowMicroseconds, counts.c_str());
}

std::string countsText(const std::vector<std::vector<double>>& columns, std::size_t first) {
    std::array<char, 128> text{};
    std::snprintf(text.data(), text.size(), "%.2f / %.2f / %.2f",
                  mean(alternate(columns[2], first)), mean(alternate(columns[3], first)),
                  mean(alternate(columns[4], first)));
    return text.data();
}

void reportHover(int width, int height) {
    DesktopOptions options;
    options.width = width;
    options.height = height;
    PrivateDesktop desktop(options);
    const auto application = desktop.start({factory});
    const auto window = waitForWindow(desktop.server(), hasClass("Gtk3-widget-factory"));
    const auto placed =
        placeWindow(desktop.server(), window.id, {0, 0, window.bounds.width, window.bounds.height});
    const AccessibleTree tree(desktop.accessibilityBusAddress());
    (void)tree.waitFor(factory, "check box", "checkbutton");
    // The same points whatever the screen's size.
    const std::string points = gridOf(placed.bounds, 1280, 800);

    (void)runProbe(desktop, {LUMETRY_LATENCY_BARE, factory}, points);
    auto bare = runProbe(desktop, {LUMETRY_LATENCY_BARE, factory}, points);
    const auto own = runProbe(desktop, {LUMETRY_LATENCY_PROBE}, points);
    const auto again = runProbe(desktop, {LUMETRY_LATENCY_BARE, factory}, points);
    for (std::size_t column = 0; column < bare.size(); ++column) {
        bare[column].insert(bare[column].end(), again[column].begin(), again[column].end());
    }
    const Cost bareCost = costOf(bare[0]);
    std::printf("%d x %d, %zu points over %s\n", width, height, own[0].size() / 2, factory);
    std::printf("  %-26s %-19s   %-19s   requests / waits / X round trips\n", "",
                "median (to bare)", "95 % (to bare)");
    std::array<char, 64> calls{};
    std::snprintf(calls.data(), calls.size(), "%.2f calls", mean(bare[1]));
    printRow("bare libatspi calls", bareCost, bareCost, calls.data());
    printRow("update, new element", costOf(alternate(own[0], 0)), bareCost, countsText(own, 0));
    printRow("update, same element", costOf(alternate(own[0], 1)), bareCost, countsText(own, 1));
    printRow("repaint, new element", costOf(alternate(own[1], 0)), bareCost, "");
}

/// What the kernel counts of a process.
struct Usage {
    long ticks = 0;    ///< processor time, user and system
    long switches = 0; ///< times it went to sleep by itself: wake-ups
};

Usage usageOf(pid_t pid) {
    const auto folder = std::filesystem::path("/proc") / std::to_string(pid);
    Usage usage;
    std::string stat;
    std::getline(std::ifstream(folder / "stat"), stat);
    std::istringstream fields(stat.substr(stat.rfind(')') + 2));
    std::string skipped;
    for (int field = 3; field < 14; ++field) {
        fields >> skipped;
    }
    long user = 0;
    long system = 0;
    fields >> user >> system;
    usage.ticks = user + system;
    std::ifstream status(folder / "status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("voluntary_ctxt_switches:")) {
            usage.switches = std::stol(line.substr(line.find(':') + 1));
        }
    }
    return usage;
}

/// Lines of /proc/PID/smaps_rollup that say where the memory is, in kilobytes.
void printMemory(pid_t pid) {
    std::ifstream rollup("/proc/" + std::to_string(pid) + "/smaps_rollup");
    for (std::string line; std::getline(rollup, line);) {
        for (const char* wanted :
             {"Rss:", "Pss:", "Private_Dirty:", "Private_Clean:", "Shared_Clean:"}) {
            if (line.starts_with(wanted)) {
                std::printf("  %s\n", line.c_str());
            }
        }
    }
}

void reportRest() {
    constexpr auto observed = std::chrono::seconds(10);
    PrivateDesktop desktop;
    const auto application = desktop.start({factory});
    const AccessibleTree tree(desktop.accessibilityBusAddress());
    const auto button = tree.waitFor(factory, "push button", "link button");
    auto lumetry = desktop.start({LUMETRY_PROGRAM});
    const OverlayReader overlay(desktop.server());
    const auto extents = button.extents();
    if (!extents) {
        throw std::runtime_error("the button has no place");
    }
    (void)overlay.waitFor("the overlay", [](const OverlayReadout& shown) { return shown.exitTag; });
    desktop.input().glidePointer(static_cast<int>(extents->midX()),
                                 static_cast<int>(extents->midY()));
    (void)overlay.waitForHeader("Button · link button");
    // The page with the spinner stays in front, so the application keeps on drawing.
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const Usage before = usageOf(lumetry.pid());
    std::this_thread::sleep_for(observed);
    const Usage after = usageOf(lumetry.pid());
    std::printf("at rest for %d s in inspect mode: %ld clock ticks, %ld wake-ups\n",
                static_cast<int>(observed.count()), after.ticks - before.ticks,
                after.switches - before.switches);
    std::printf("memory while inspecting\n");
    printMemory(lumetry.pid());
}

} // namespace

int main() {
    try {
        reportHover(1280, 800);
        reportHover(5120, 2880);
        reportRest();
    } catch (const std::exception& problem) {
        std::cerr << "lumetry_latency: " << problem.what() << '\n';
        return 1;
    }
    return 0;
}
