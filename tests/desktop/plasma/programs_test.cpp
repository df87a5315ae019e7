#include "rig/browser_files.h"
#include "rig/kwin_desktop.h"
#include "rig/processes/wait_until.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <iostream>
#include <string>
#include <vector>

namespace lumetry::desktop {
namespace {

using Json = nlohmann::json;

/// A page whose places are known from its style sheet: it fills the output.
constexpr const char* page = R"(<!doctype html><title>Places</title>
<style>body { margin: 0; background: #ffffff } button { position: absolute; left: 100px; top: 80px;
width: 160px; height: 44px; border: 0; background: #14532d; color: #ffffff; font: 16px sans-serif }
</style><button>Save</button>)";

class PlasmaPrograms : public testing::Test {
protected:
    void SetUp() override {
        if (const auto problem = KwinDesktop::problem()) {
            GTEST_SKIP() << *problem;
        }
    }
};

FinishedProgram run(const KwinDesktop& desktop, const std::vector<std::string>& command) {
    ProcessOptions options;
    options.environment = desktop.environment();
    options.workingFolder = desktop.folder();
    return runProgram(command, options);
}

/// The value of a row; "-" when it is not shown.
std::string row(const Json& measured, const std::string& label) {
    for (const Json& one : measured["rows"]) {
        if (one["label"] == label) {
            return one["value"];
        }
    }
    return "-";
}

/// What is said of a point as JSON, once it is said of an element with that header, and its pixels
/// may be read: KWin learns of new desktop entries within seconds. Null where that does not come,
/// and what was said last is printed.
Json measureUntil(const KwinDesktop& desktop, Point at, const std::string& header) {
    Json measured;
    // Browsers start slowly where KWin draws without a graphics card. Firefox waits for KWin to
    // draw, which it does not do on an output that nobody looks at: a screenshot makes it.
    constexpr auto patience = std::chrono::seconds(60);
    const bool isThere = waitUntil(
        [&] {
            (void)desktop.screenshot();
            const auto finished = run(
                desktop, {LUMETRY_MEASURE, "--json", std::to_string(at.x), std::to_string(at.y)});
            measured = finished.status.code == 0 ? Json::parse(finished.output) : Json();
            return measured.is_object() && measured["header"] == header &&
                   measured["box"] != measured["window"] && // the page is there, too
                   row(measured, "colors") == "-" &&
                   (header[0] != 'B' || row(measured, "fill") != "-");
        },
        patience);
    if (!isThere) {
        std::cerr << "the last measurement: " << measured << '\n';
    }
    return isThere ? measured : Json();
}

/// A browser with that page over the whole output.
ChildProcess startBrowser(KwinDesktop& desktop, const std::string& browser) {
    const std::string profile = makeProfileFolder(desktop, browser).string();
    const std::string file = writePage(desktop, page).string();
    if (browser == "firefox") {
        return desktop.start({"firefox-esr", "--profile", profile, "--kiosk", file},
                             {{"MOZ_ENABLE_WAYLAND", "1"}});
    }
    return desktop.start({"chromium", "--no-sandbox", "--ozone-platform=wayland", "--no-first-run",
                          "--test-type", "--user-data-dir=" + profile, "--kiosk",
                          "--app=file://" + file});
}

TEST_F(PlasmaPrograms, MeasureAPageWhereItIs) {
    const struct {
        std::string browser;
        double scale;
        std::string header;
    } cases[] = {{"chromium", 1, "Button · Save"},
                 {"chromium", 1.5, "Button · Save"},
                 // Of a browser that goes by its name only the size is measured.
                 {"firefox", 1, "🌐 Firefox ESR · web"}};
    for (const auto& [browser, scale, header] : cases) {
        SCOPED_TRACE(browser + " at " + std::to_string(scale));
        KwinOptions options;
        options.scale = scale;
        KwinDesktop desktop(options);
        desktop.permit(LUMETRY_MEASURE);
        const auto process = startBrowser(desktop, browser);
        const Json button = measureUntil(desktop, {180, 102}, header);
        ASSERT_TRUE(button.is_object());
        EXPECT_EQ(button["box"], Json::array({100, 80, 160, 44})) << button;
        EXPECT_EQ(button["scale"], scale);
        if (browser == "chromium") {
            EXPECT_EQ(row(button, "fill"), "≈ #14532D");
            EXPECT_EQ(row(button, "text"), "#FFFFFF");
        }
    }
}

TEST_F(PlasmaPrograms, AuditApplicationsOfEveryKind) {
    KwinOptions options;
    options.xwayland = true;
    KwinDesktop desktop(options);
    desktop.permit(LUMETRY_AUDIT);
    const struct {
        std::vector<std::string> command;
        Environment variables;
        std::string title;
    } cases[] = {
        {{"gtk3-widget-factory"}, {{"GDK_BACKEND", "wayland"}}, "widget-factory"},
        {{"gtk3-widget-factory"}, {{"GDK_BACKEND", "x11"}}, "widget-factory"},
        {{"gtk4-demo"}, {{"GDK_BACKEND", "wayland"}}, "GTK Demo"},
        {{LUMETRY_QT_FORM}, {{"QT_QPA_PLATFORM", "wayland"}}, "Qt form"},
    };
    for (const auto& [command, variables, title] : cases) {
        SCOPED_TRACE(title);
        auto application = desktop.start(command, variables);
        Json report;
        requireUntil("\"" + title + "\" to be audited", [&, title = title] {
            const auto finished = run(desktop, {LUMETRY_AUDIT, "--json", "--window", title});
            report = finished.output.empty() ? Json() : Json::parse(finished.output);
            return report.is_object() && report["elements"] > 10; // it may still be starting
        });
        // What the pixels show is where the elements are: their fills are found.
        EXPECT_GT(report["summary"]["palette"].size(), 2U);
        application.terminate();
    }
    // One that is started for it finds the environment that the audit was started with, not what
    // that has set for itself.
    const auto finished = run(desktop, {LUMETRY_AUDIT, "--json", "--", LUMETRY_QT_FORM});
    ASSERT_FALSE(finished.output.empty()) << finished.error;
    EXPECT_GT(Json::parse(finished.output)["elements"], 10);
}

} // namespace
} // namespace lumetry::desktop
