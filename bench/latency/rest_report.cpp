#include "reports.h"

#include "bench/shared/widget_factory.h"

#include "rig/lumetry_settings.h"
#include "rig/overlay_reader.h"
#include "rig/processes/process_usage.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

namespace lumetry::latency {
namespace {

using namespace bench;
using namespace desktop;

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

} // namespace

void reportRest() {
    constexpr auto observed = std::chrono::seconds(10);
    PrivateDesktop desktop;
    const WidgetFactory factory(desktop);
    const auto button = factory.tree.waitFor(WidgetFactory::name, "push button", "link button");
    markOnboarded(desktop); // so that it begins to inspect
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

} // namespace lumetry::latency
