// From the start of the program to its item in the tray, against the smallest Qt program that has
// one, in turn on the same desktop; and what Lumetry costs when nothing is asked of it.
//
//   lumetry_bench_start

#include "rig/lumetry_settings.h"
#include "rig/private_desktop.h"
#include "rig/processes/process_usage.h"
#include "rig/shell_user.h"
#include "rig/tray_icon.h"

#include <X11/keysym.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <thread>
#include <vector>

namespace {

using namespace lumetry::desktop;

constexpr int rounds = 20;

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Milliseconds until the item is on screen; the program has ended afterwards.
double timeToItem(PrivateDesktop& desktop, const std::string& program) {
    const auto name = std::filesystem::path(program).filename().string();
    const auto begin = std::chrono::steady_clock::now();
    auto process = desktop.start({program});
    requireUntil("the item of " + name,
                 [&] { return trayIconOf(desktop.server(), name).has_value(); });
    const std::chrono::duration<double, std::milli> elapsed =
        std::chrono::steady_clock::now() - begin;
    process.terminate();
    requireUntil("the item to go", [&] { return !trayIconOf(desktop.server(), name); });
    return elapsed.count();
}

void reportStart() {
    PrivateDesktop desktop;
    markOnboarded(desktop);
    const auto tray = desktop.start({"trayer", "--width", "120", "--widthtype", "pixel"});
    std::vector<double> lumetry;
    std::vector<double> smallest;
    // The first round reads both from the disk.
    for (int round = 0; round <= rounds; ++round) {
        const double ours = timeToItem(desktop, LUMETRY_PROGRAM);
        const double theirs = timeToItem(desktop, SMALLEST_PROGRAM);
        if (round > 0) {
            lumetry.push_back(ours);
            smallest.push_back(theirs);
        }
    }
    std::printf("start to tray item, median of %d: Lumetry %.0f ms, smallest %.0f ms, ratio %.2f\n",
                rounds, median(lumetry), median(smallest), median(lumetry) / median(smallest));
}

void reportRest() {
    PrivateDesktop desktop;
    markOnboarded(desktop);
    const auto tray = desktop.start({"trayer", "--width", "120", "--widthtype", "pixel"});
    ShellUser user(desktop, LUMETRY_PROGRAM);
    const auto lumetry = desktop.start({LUMETRY_PROGRAM});
    user.waitUntilInspecting(true);
    desktop.input().typeKey(XK_Escape);
    user.waitUntilInspecting(false);
    constexpr auto settling = std::chrono::seconds(2);
    constexpr auto watched = std::chrono::seconds(10);
    std::this_thread::sleep_for(settling);
    const Usage before = usageOf(lumetry.pid());
    std::this_thread::sleep_for(watched);
    const Usage after = usageOf(lumetry.pid());
    std::printf("10 s off inspect mode: %ld clock ticks, %ld wake-ups\n",
                after.ticks - before.ticks, after.switches - before.switches);
}

} // namespace

int main() {
    try {
        reportStart();
        reportRest();
    } catch (const std::exception& problem) {
        std::cerr << "lumetry_bench_start: " << problem.what() << '\n';
        return 1;
    }
    return 0;
}
