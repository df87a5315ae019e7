#include "reports.h"

#include "bench/shared/statistics.h"
#include "rig/accessible_tree.h"
#include "rig/kwin_desktop.h"
#include "rig/lumetry_settings.h"
#include "rig/processes/wait_until.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace lumetry::latency {
namespace {

using namespace desktop;

constexpr int width = 1600;
constexpr int height = 1000;

/// Microseconds on the clock of libwayland's debugging output, which is cut to 32 bits.
std::uint32_t debugClock() {
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::microseconds>(
                                          std::chrono::system_clock::now().time_since_epoch())
                                          .count());
}

/// When the first surface was committed of which a text tells: "[milliseconds] -> wl_surface@…".
std::optional<std::uint32_t> firstCommit(const std::string& text) {
    const auto commit = text.find(".commit()");
    const auto begin = commit == std::string::npos ? commit : text.rfind('[', commit);
    if (begin == std::string::npos) {
        return std::nullopt;
    }
    constexpr double microseconds = 1000;
    const double milliseconds = std::strtod(&text[begin + 1], nullptr);
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(milliseconds * microseconds));
}

/// Moves the pointer and says how long it took until the overlay was committed; absent where
/// nothing had to be drawn.
std::optional<double> move(KwinDesktop& desktop, const ChildProcess& lumetry, Point to) {
    constexpr auto rest = std::chrono::milliseconds(300);
    const std::size_t before = lumetry.standardError().size();
    const std::uint32_t start = debugClock();
    desktop.input().movePointer(to);
    std::this_thread::sleep_for(rest);
    const auto commit = firstCommit(lumetry.standardError().substr(before));
    return commit ? std::optional<double>(*commit - start) : std::nullopt;
}

/// What KWin takes for a picture of its screen when nobody asks for anything else.
std::vector<double> bareCaptures(const KwinDesktop& desktop) {
    constexpr int count = 20;
    std::vector<double> costs;
    costs.reserve(count);
    for (int i = 0; i < count; ++i) {
        const auto start = std::chrono::steady_clock::now();
        (void)desktop.screenshot();
        costs.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
                .count());
    }
    return costs;
}

void printRow(const char* what, const std::vector<double>& costs, std::size_t of) {
    constexpr double frame = 1e6 / 60;
    const auto within = [&costs](double frames) {
        return std::ranges::count_if(costs, [=](double cost) { return cost <= frames * frame; });
    };
    const auto cost = bench::costOf(costs);
    std::printf("  %-32s %6.0f us (%.2f frames)   %6.0f us (%.2f)   %td, %td of %zu (%zu)\n", what,
                cost.median, cost.median / frame, cost.slow, cost.slow / frame, within(1),
                within(2), costs.size(), of);
}

struct Subject {
    std::vector<std::string> command;
    const char* role; ///< of an element that is there when the application is ready
    const char* name;
    const char* says; ///< what is to be known of it
};

void reportOn(const Subject& subject) {
    KwinOptions options;
    options.width = width;
    options.height = height;
    KwinDesktop desktop(options);
    desktop.permit(LUMETRY_PROGRAM);
    markOnboarded(desktop);
    const auto application = desktop.start(subject.command);
    (void)AccessibleTree(desktop.accessibilityBusAddress())
        .waitFor(subject.command.front(), subject.role, subject.name);
    const auto bare = bareCaptures(desktop);
    const auto lumetry = desktop.start({LUMETRY_PROGRAM}, {{"WAYLAND_DEBUG", "client"}});
    requireUntil("inspect mode", [&] {
        return move(desktop, lumetry, {300, 300}) || move(desktop, lumetry, {500, 400});
    });
    constexpr int columns = 12;
    constexpr int rows = 8;
    std::vector<double> next;
    std::vector<double> same;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const Point point = {(column + 0.5) * width / columns, (row + 0.5) * height / rows};
            if (const auto cost = move(desktop, lumetry, point)) {
                next.push_back(*cost);
            }
            if (const auto cost = move(desktop, lumetry, {point.x + 1, point.y + 1})) {
                same.push_back(*cost);
            }
        }
    }
    constexpr std::size_t moves = std::size_t{columns} * rows;
    std::printf("Plasma, %d x %d, over %s (%s): from the pointer's move to the overlay's commit\n",
                width, height, subject.command.front().c_str(), subject.says);
    std::printf("  %-32s %-26s   95 %%                  within 1, 2 frames of drawn (moves)\n", "",
                "median");
    printRow("next point", next, moves);
    printRow("a point on, mostly same element", same, moves);
    printRow("a picture of the screen, bare", bare, bare.size());
}

} // namespace

void reportPlasma() {
    reportOn({{"gtk3-demo"}, "label", "", "at rest"});
    reportOn({{"gtk3-widget-factory"}, "toggle button", "togglebutton", "never at rest"});
}

} // namespace lumetry::latency
