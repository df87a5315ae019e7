#include "kits.h"

#include "document.h"
#include "page.h"
#include "page_server.h"

#include "rig/chromium.h"
#include "rig/desktop_windows.h"
#include "rig/firefox.h"
#include "rig/processes/programs.h"
#include "rig/processes/wait_until.h"
#include "rig/screenshot.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
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

/// Java asks for its bridge to the accessibility bus by name.
Shown showJava(const Kit& kit, PrivateDesktop& desktop, const std::vector<Planned>& plan,
               double scale) {
    constexpr const char* bridge = "/usr/share/java/java-atk-wrapper.jar";
    if (!desktop::findProgram("java") || !std::filesystem::exists(bridge)) {
        missPackages(kit, "Java, or its bridge,");
    }
    return showProgram(
        desktop,
        {"java", "-Dsun.java2d.uiScale=" + std::to_string(scale),
         "-Djavax.accessibility.assistive_technologies=org.GNOME.Accessibility.AtkWrapper",
         "--class-path", bridge,
         std::string(LUMETRY_SOURCES) + "/bench/accuracy/kits/java/Accuracy.java",
         planFile(desktop, plan)},
        scale);
}

/// A document's places are where the screen shows them, once its window has come to rest.
Shown showDocument(const Kit& kit, PrivateDesktop& desktop, const std::vector<Planned>& plan,
                   double scale) {
    if (!desktop::findProgram("soffice")) {
        missPackages(kit, "LibreOffice");
    }
    const auto document = desktop.folder() / "document.fodt";
    std::ofstream(document) << documentText(plan);
    auto program = desktop.start(
        {"soffice", "--nologo", "--norestore", "--nolockcheck",
         "-env:UserInstallation=file://" + (desktop.folder() / "libreoffice").string(),
         document.string()});
    const auto area = Rect{0, 0, static_cast<double>(desktop.server().screen().width_in_pixels),
                           static_cast<double>(desktop.server().screen().height_in_pixels)};
    constexpr auto rest = std::chrono::seconds(5);
    std::string truth = *desktop::requireUntil(
        "the document to show as a whole",
        [&]() -> std::optional<std::string> {
            const auto screen = settledScreenshot(desktop.server(), area, rest);
            return screen ? documentTruth(plan, *screen, scale) : std::nullopt;
        },
        std::chrono::minutes(2));
    return {std::move(program), std::move(truth), {}};
}

constexpr const char* fields = "entry area spin combo popup";
constexpr const char* buttons = "button check radio popup";
constexpr const char* typography = "font weight text contrast";

std::vector<std::string> wordsOf(const std::string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

} // namespace

const std::vector<Kit>& kits() {
    static const std::vector<Kit> all = {
        // They have no objects for what is inside a field.
        {"chromium", showPage, {{fields, "padding"}, {"popup", typography}}},
        {"firefox",
         showPage,
         {{fields, "padding"}, {"popup", typography}},
         FontSteps::roundedPoints},
        // Nor has it for what is inside a button.
        {"gtk3",
         showWindow,
         {{fields, "padding"}, {buttons, "padding"}, {buttons, typography}},
         FontSteps::cutPoints},
        // Only its texts of many lines tell of fonts.
        {"qt6",
         showWindow,
         {{"entry spin", "padding"},
          {buttons, "padding"},
          {buttons, typography},
          {"entry spin combo", typography},
          {"label cell", "font weight color contrast"}},
         FontSteps::roundedPoints},
        // Paddings are outside of the content boxes that it tells.
        {"gtk4", showWindow, {{fields, "padding"}, {"button", "padding"}, {"box row", "padding"}}},
        // It tells no fonts, and what is inside a field or a button neither.
        {"java",
         showJava,
         {{fields, "padding"},
          {buttons, "padding"},
          {fields, typography},
          {buttons, typography},
          {"label", "font weight color contrast"}}},
        {"libreoffice", showDocument, {}},
    };
    return all;
}

std::set<std::string> untoldRows(const Kit& kit, const std::string& what) {
    std::set<std::string> rows;
    for (const Untold& untold : kit.untold) {
        const auto whats = wordsOf(untold.whats);
        if (std::ranges::find(whats, what) != whats.end()) {
            std::ranges::move(wordsOf(untold.rows), std::inserter(rows, rows.end()));
        }
    }
    return rows;
}

} // namespace lumetry::accuracy
