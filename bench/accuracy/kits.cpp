#include "kits.h"

#include "page.h"
#include "page_server.h"

#include "support/processes/wait_until.h"
#include "support/real_desktop/chromium.h"
#include "support/real_desktop/desktop_windows.h"
#include "support/real_desktop/firefox.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace lumetry::accuracy {
namespace {

using desktop::PrivateDesktop;

Shown showPage(const Kit& kit, PrivateDesktop& desktop, const std::vector<Planned>& plan,
               double /*scale*/) {
    PageServer server(pageHtml(plan), truthPath);
    const std::string html = "<meta http-equiv=refresh content='0;url=" + server.address() + "'>";
    auto browser = kit.name == "firefox"
                       ? startFirefoxWith(desktop, html, desktop::FirefoxGuise::application)
                       : startChromiumWith(desktop, html);
    std::string truth = server.waitForPost(std::chrono::minutes(2));
    return {std::move(browser), std::move(truth), {}};
}

[[noreturn]] void missPackages(const Kit& kit, const std::string& what) {
    const std::string name(kit.name);
    std::ifstream list(LUMETRY_SOURCES "/packaging/debian-packages/kit-" + name + ".txt");
    std::string packages;
    for (std::string package; std::getline(list, package);) {
        packages += " " + package;
    }
    throw std::runtime_error(what + " is missing. It takes the Debian packages" + packages +
                             ", which bench/accuracy/install-kit " + name +
                             " installs; then configure and build again");
}

/// GTK is told of whole scales by the environment, as a desktop's session does; its fonts follow
/// the desktop's resolution besides, which is not to count twice.
desktop::Environment gtkEnvironment(double scale) {
    if (scale < 2 || scale != std::floor(scale)) {
        return {};
    }
    return {{"GDK_SCALE", std::to_string(static_cast<int>(scale))},
            {"GDK_DPI_SCALE", std::to_string(1 / scale)}};
}

Shown showProgram(PrivateDesktop& desktop, const std::vector<std::string>& command, double scale) {
    auto program = desktop.start(command, gtkEnvironment(scale));
    const auto window = waitForWindow(desktop.server(), desktop::hasTitle("Accuracy"));
    desktop::requireUntil("what the window says of itself", [&] {
        if (!program.running()) {
            throw std::runtime_error("the window's program ended: " + program.standardError());
        }
        return program.standardOutput().ends_with('\n');
    });
    const auto settled = waitForWindow(desktop.server(), desktop::hasTitle("Accuracy"));
    std::string truth = program.standardOutput();
    return {std::move(program), std::move(truth), settled.bounds.origin()};
}

std::string planFile(const PrivateDesktop& desktop, const std::vector<Planned>& plan) {
    const auto file = desktop.folder() / "plan";
    std::ofstream(file) << planText(plan);
    return file.string();
}

Shown showWindow(const Kit& kit, PrivateDesktop& desktop, const std::vector<Planned>& plan,
                 double scale) {
    const std::string name(kit.name);
    const std::string program = LUMETRY_KITS "/" + name + "/lumetry_kit_" + name;
    if (!std::filesystem::exists(program)) {
        missPackages(kit, "The window for " + name);
    }
    return showProgram(desktop, {program, planFile(desktop, plan)}, scale);
}

/// Browsers have no objects for what is inside a field.
const std::vector<Untold> untoldByBrowsers = {
    {"entry", "padding"}, {"area", "padding"}, {"spin", "padding"}, {"combo", "padding"},
    {"popup", "padding"}, {"popup", "font"},   {"popup", "weight"}, {"popup", "text"}};

} // namespace

const std::vector<Kit>& kits() {
    static const std::vector<Kit> all = {
        {"chromium", showPage, untoldByBrowsers, FontSteps::fine},
        {"firefox", showPage, untoldByBrowsers, FontSteps::roundedPoints},
        {"gtk3", showWindow, {}, FontSteps::cutPoints},
    };
    return all;
}

bool isUntold(const Kit& kit, std::string_view what, std::string_view row) {
    return std::ranges::any_of(kit.untold, [&](const Untold& untold) {
        return (untold.what.empty() || untold.what == what) && untold.row == row;
    });
}

} // namespace lumetry::accuracy
