// How right the measurements are: what lumetry-measure says of the elements of a window against
// what the program that shows the window says of them.
//
//   lumetry_accuracy [--kit KIT] [--scale SCALE] [--seed SEED]
//
// LUMETRY_ACCURACY_PICTURE may name a PNG file for a picture of the window.

#include "comparison.h"
#include "kits.h"
#include "plan.h"
#include "reading.h"
#include "report.h"
#include "truth.h"

#include "rig/private_desktop.h"
#include "rig/processes/wait_until.h"
#include "rig/screenshot.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace lumetry;
using namespace lumetry::accuracy;
using namespace lumetry::desktop;

/// A tree may be built only once it is asked for, and arrive piece by piece.
void awaitTree(const PrivateDesktop& desktop, const std::vector<Truth>& truths) {
    constexpr auto patience = std::chrono::seconds(10);
    (void)waitUntil(
        [&] {
            return measure(desktop, truths.back().point).header.starts_with(truths.back().role);
        },
        patience);
}

void run(const Kit& kit, double scale, unsigned seed) {
    constexpr int aroundWindow = 60; ///< for its title and shadow, in points
    DesktopOptions options;
    options.width = static_cast<int>(std::ceil((windowWidth + aroundWindow) * scale));
    options.height = static_cast<int>(std::ceil((windowHeight + aroundWindow) * scale));
    options.scale = scale;
    PrivateDesktop desktop(options);
    const Shown shown = kit.show(kit, desktop, makePlan(seed), scale);
    const std::vector<Truth> truths = parseTruth(shown.truth, shown.origin, scale);
    awaitTree(desktop, truths);
    if (const char* picture = std::getenv("LUMETRY_ACCURACY_PICTURE")) {
        writePng(screenshot(desktop.server()), picture);
    }
    std::vector<Finding> findings;
    for (const Truth& truth : truths) {
        for (Finding& finding : compare(truth, measure(desktop, truth.point), kit, scale)) {
            findings.push_back(std::move(finding));
        }
    }
    std::printf("%zu elements\n\n", truths.size());
    printReport(findings);
}

const Kit& kitNamed(const std::string& name) {
    return *std::ranges::find_if(kits(), [&](const Kit& kit) { return kit.name == name; });
}

} // namespace

int main(int argc, char** argv) {
    CLI::App options("Measures a window, and compares with what its own program says of it.",
                     "lumetry_accuracy");
    std::vector<std::string> names;
    for (const Kit& kit : kits()) {
        names.emplace_back(kit.name);
    }
    std::string kit = names.front();
    double scale = 1;
    unsigned seed = 1;
    options.add_option("--kit", kit, "What the window is built with")->check(CLI::IsMember(names));
    options.add_option("--scale", scale, "Pixels to a point")->check(CLI::Range(1.0, 3.0));
    options.add_option("--seed", seed, "Of the elements' places and styles");
    CLI11_PARSE(options, argc, argv);
    try {
        run(kitNamed(kit), scale, seed);
    } catch (const std::exception& problem) {
        std::cerr << "lumetry_accuracy: " << problem.what() << '\n';
        return 1;
    }
    return 0;
}
