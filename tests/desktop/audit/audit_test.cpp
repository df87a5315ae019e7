#include "rig/accessible_tree.h"
#include "rig/chromium.h"
#include "rig/desktop_windows.h"
#include "rig/private_desktop.h"
#include "rig/processes/child_process.h"
#include "rig/processes/wait_until.h"
#include "rig/screenshot.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace lumetry::desktop {
namespace {

using Json = nlohmann::json;

constexpr const char* widgetFactory = "gtk3-widget-factory";

/// Its texts need 4.5:1, its targets room, its fields names; it has one of each that falls short.
constexpr const char* flawedPage = R"(<!doctype html><title>Flaws & <b>markup</b></title>
<style>body { font: 16px sans-serif; background: #ffffff; color: #222222 }
button { font: 16px sans-serif; width: 120px; height: 40px; background: #eeeeee; border: 0;
  color: #222222 } .small { width: 20px; height: 20px; margin: 0; padding: 0 }</style>
<h1>Prices</h1>
<p style="color:#767676">Enough contrast</p>
<p style="color:#777777">Just too little</p>
<button>Save</button>
<p><button class="small" aria-label="up">a</button><button class="small" aria-label="down">b</button></p>
<p><input style="width:200px;height:30px"></p>
<p><label>Named <input style="width:200px;height:30px"></label></p>
<p style="font-size:8px">Tiny</p>
<p style="margin-top:3000px; color:#cccccc">Scrolled away</p>)";

/// A desktop on which lumetry-audit is run.
class AuditedDesktop {
public:
    explicit AuditedDesktop(const DesktopOptions& options = {}) : desktop(options) {}

    [[nodiscard]] ProcessOptions options() const {
        ProcessOptions options;
        options.environment = desktop.environment();
        options.workingFolder = desktop.folder();
        return options;
    }
    [[nodiscard]] FinishedProgram audit(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), LUMETRY_AUDIT);
        return runProgram(arguments, options());
    }
    [[nodiscard]] std::string file(const std::string& name, const std::string& text = {}) const {
        const auto path = desktop.folder() / name;
        if (!text.empty()) {
            std::ofstream(path) << text;
        }
        return path.string();
    }
    [[nodiscard]] ChildProcess startWidgetFactory() {
        auto application = desktop.start({widgetFactory});
        const auto window = waitForWindow(desktop.server(), hasClass("Gtk3-widget-factory"));
        static_cast<void>(placeWindow(desktop.server(), window.id,
                                      {0, 0, window.bounds.width, window.bounds.height}));
        static_cast<void>(AccessibleTree(desktop.accessibilityBusAddress())
                              .waitFor(widgetFactory, "check box", "checkbutton"));
        return application;
    }

    PrivateDesktop desktop;
};

WindowPredicate titleHas(const std::string& part) {
    return [part](const DesktopWindow& window) {
        return window.title.find(part) != std::string::npos;
    };
}

/// One clear sentence and nothing else.
void expectRefusal(const FinishedProgram& finished, int status, const std::string& expected) {
    EXPECT_EQ(finished.status.code, status) << finished.error;
    EXPECT_EQ(finished.output, "");
    const auto line = finished.error.rfind("lumetry-audit: ");
    ASSERT_NE(line, std::string::npos) << finished.error;
    EXPECT_NE(finished.error.find(expected, line), std::string::npos) << finished.error;
}

/// "rule severity header" of each finding.
std::multiset<std::string> findingsIn(const Json& report) {
    std::multiset<std::string> findings;
    for (const Json& finding : report["findings"]) {
        if (finding["rule"] != "consistency") {
            findings.insert(finding["rule"].get<std::string>() + " " +
                            finding["severity"].get<std::string>() + " " +
                            finding["header"].get<std::string>());
        }
    }
    return findings;
}

TEST(Audit, FindsTheFlawsOfAPageAndNothingElse) {
    AuditedDesktop audited;
    const auto browser = startChromiumWith(audited.desktop, flawedPage);
    static_cast<void>(waitForWindow(audited.desktop.server(), titleHas("Flaws")));
    const auto html = audited.file("audit.html");
    const auto finished = audited.audit({"--json", "--html", html, "--window", "Flaws"});
    EXPECT_EQ(finished.status.code, 1) << finished.error;
    const Json report = Json::parse(finished.output);
    const std::multiset<std::string> expected = {
        "contrast error StaticText · Just too little", "target-size error Button · up",
        "target-size error Button · down", "name error TextField",
        "text-size error StaticText · Tiny"};
    EXPECT_EQ(findingsIn(report), expected) << finished.output;
    EXPECT_NE(report["window"]["title"].get<std::string>().find("<b>markup</b>"),
              std::string::npos);
    EXPECT_EQ(report["scale"], 1);
    EXPECT_GE(report["leftOut"]["hidden"].get<int>() + report["leftOut"]["clipped"].get<int>(), 1);
    const auto& contrast = report["findings"][0];
    EXPECT_EQ(contrast["value"], "4.47:1 (#777777 on #FFFFFF)");
    EXPECT_EQ(contrast["wanted"], "4.5:1");
    EXPECT_EQ(contrast["estimated"], false);
    EXPECT_EQ(contrast["baseline"], false);
    EXPECT_EQ(contrast["box"].size(), 4U);
    EXPECT_NE(contrast["path"].get<std::string>().find(" / "), std::string::npos);
    EXPECT_TRUE(std::ranges::any_of(report["summary"]["palette"], [](const Json& color) {
        return color["color"] == "#EEEEEE" && color["uses"] == Json::array({"fill"});
    })) << report["summary"];
    for (const char* list : {"type", "radii", "spacing"}) {
        EXPECT_TRUE(report["summary"][list].is_array());
    }
}

// The page of an audit is looked at with the audit itself, in the browser it is made for.
TEST(Audit, WritesAPageThatPassesItsOwnRules) {
    DesktopOptions options;
    options.width = 1600;
    options.height = 1200;
    AuditedDesktop audited(options);
    const auto html = audited.file("audit.html");
    {
        const auto browser = startChromiumWith(audited.desktop, flawedPage);
        static_cast<void>(waitForWindow(audited.desktop.server(), titleHas("Flaws")));
        EXPECT_EQ(audited.audit({"--html", html, "--window", "Flaws"}).status.code, 1);
    }
    std::ostringstream text;
    text << std::ifstream(html).rdbuf();
    EXPECT_EQ(text.str().find("<b>markup"), std::string::npos);
    EXPECT_EQ(text.str().find("<script"), std::string::npos);
    EXPECT_EQ(text.str().find("http://"), std::string::npos);

    const auto browser = startChromium(audited.desktop, html);
    static_cast<void>(waitForWindow(audited.desktop.server(), titleHas("· audit")));
    const auto finished = audited.audit({"--json", "--window", "audit"});
    ASSERT_FALSE(finished.output.empty()) << finished.error;
    const Json report = Json::parse(finished.output);
    EXPECT_GT(report["elements"], 30);
    for (const Json& finding : report["findings"]) {
        EXPECT_NE(finding["rule"], "contrast") << finding;
        EXPECT_NE(finding["rule"], "name") << finding;
        EXPECT_NE(finding["rule"], "target-size") << finding;
    }

    // By keyboard from the list to the picture and back: the outline gets a border of its colour,
    // the entry a background.
    constexpr std::uint32_t errorColor = 0xFFB3123E;
    constexpr std::uint32_t entryColor = 0xFFFFF4D6;
    const auto pixelsOf = [&audited](std::uint32_t color) {
        const auto picture = settledScreenshot(audited.desktop.server(), {0, 0, 1600, 1200});
        return picture ? std::ranges::count(picture->pixels, color) : -1;
    };
    InputDevice& input = audited.desktop.input();
    input.typeKey(XK_Tab);
    const auto outlined = pixelsOf(errorColor);
    EXPECT_EQ(pixelsOf(entryColor), 0);
    input.typeKey(XK_Return);
    EXPECT_GT(pixelsOf(errorColor), outlined + 500);
    input.typeKey(XK_Return);
    EXPECT_GT(pixelsOf(entryColor), 1000);
    EXPECT_LT(pixelsOf(errorColor), outlined + 100);
}

TEST(Audit, KnowsItsBaselineAndItsConfiguration) {
    AuditedDesktop audited;
    auto application = audited.startWidgetFactory();
    const std::string pid = std::to_string(application.pid());
    const auto baseline = audited.file("known.json");
    const auto first = audited.audit({"--write-baseline", baseline}); // the active window
    EXPECT_EQ(first.status.code, 1) << first.error;
    EXPECT_NE(first.output.find("name (WCAG 2.2, 4.1.2): 7 errors"), std::string::npos)
        << first.output;
    const auto known = audited.audit({"--pid", pid, "--baseline", baseline, "--json"});
    EXPECT_EQ(known.status.code, 0) << known.error;
    const Json report = Json::parse(known.output);
    EXPECT_FALSE(report["findings"].empty());
    EXPECT_TRUE(std::ranges::all_of(report["findings"],
                                    [](const Json& one) { return one["baseline"] == true; }));
    const auto app = report["app"].get<std::string>();
    EXPECT_EQ(audited.audit({"--app", app, "--fail-on", "never"}).status.code, 0);
    EXPECT_EQ(audited.audit({"20", "20", "--fail-on", "error"}).status.code, 1);

    static_cast<void>(audited.file("lumetry-audit.toml", "[name]\nenabled = false\n"
                                                         "[[ignore]]\nrule = \"consistency\"\n"
                                                         "reason = \"the theme's\"\n"));
    const auto ignoring = audited.audit({"--pid", pid, "--fail-on", "warning"});
    EXPECT_EQ(ignoring.status.code, 0) << ignoring.output;
    EXPECT_NE(ignoring.output.find(" ignored."), std::string::npos) << ignoring.output;

    // Two at once tell the same.
    std::filesystem::remove(audited.file("lumetry-audit.toml"));
    ChildProcess one({LUMETRY_AUDIT, "--pid", pid, "--json"}, audited.options());
    ChildProcess two({LUMETRY_AUDIT, "--pid", pid, "--json"}, audited.options());
    ASSERT_TRUE(one.wait() && two.wait());
    EXPECT_EQ(one.standardOutput(), two.standardOutput());
    EXPECT_EQ(Json::parse(one.standardOutput())["findings"].size(), report["findings"].size());
}

TEST(Audit, StartsACommandAndEndsIt) {
    AuditedDesktop audited;
    // What is started starts the application, and may leave it to itself, as daemons do.
    const auto finished = audited.audit(
        {"--sarif", "--", "sh", "-c", "echo starting; setsid -f gtk3-widget-factory"});
    EXPECT_EQ(finished.status.code, 1) << finished.error;
    EXPECT_NE(finished.error.find("starting"), std::string::npos);
    // The window manager hears of it a little later.
    requireUntil("the application to be gone", [&] {
        return std::ranges::none_of(desktopWindows(audited.desktop.server()),
                                    hasClass("Gtk3-widget-factory"));
    });
    const Json log = Json::parse(finished.output);
    EXPECT_EQ(log["version"], "2.1.0");
    const Json& run = log["runs"][0];
    EXPECT_EQ(run["tool"]["driver"]["name"], "lumetry-audit");
    ASSERT_FALSE(run["results"].empty());
    for (const Json& result : run["results"]) {
        const auto rule = result["ruleIndex"].get<std::size_t>();
        EXPECT_EQ(run["tool"]["driver"]["rules"][rule]["id"], result["ruleId"]);
        EXPECT_TRUE(result["message"]["text"].is_string());
        EXPECT_TRUE(result["level"] == "error" || result["level"] == "warning");
        const Json& place = result["locations"][0]["physicalLocation"];
        EXPECT_EQ(place["artifactLocation"]["uri"], "sh");
    }
    expectRefusal(audited.audit({"--wait", "1", "--", "sleep", "60"}), 3, "no window within 1");
    // Nothing can come any more.
    expectRefusal(audited.audit({"--wait", "600", "--", "false"}), 3, "status 1");
    expectRefusal(audited.audit({"--", "no-such-program"}), 2, "cannot be started");
}

TEST(Audit, EndsWithWhatItHasStartedWhenAsked) {
    AuditedDesktop audited;
    const auto told = audited.file("pid");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        SCOPED_TRACE(signal);
        std::filesystem::remove(told);
        ChildProcess audit({LUMETRY_AUDIT, "--wait", "600", "--", "setsid", "-f", "sh", "-c",
                            "echo $$ > pid; exec sleep 600"},
                           audited.options());
        int pid = 0;
        ASSERT_TRUE(waitUntil([&] { return (std::ifstream(told) >> pid) && pid > 0; }));
        audit.signal(signal);
        ASSERT_TRUE(audit.wait());
        EXPECT_EQ(audit.status()->code, 128 + signal) << audit.standardError();
        EXPECT_EQ(kill(pid, 0), -1);
    }
}

TEST(Audit, NeverPassesWhatItDidNotSee) {
    AuditedDesktop audited;
    expectRefusal(audited.audit({}), 3, "no window on the screen is the active one");
    auto application = audited.startWidgetFactory();
    const std::string pid = std::to_string(application.pid());
    expectRefusal(audited.audit({"--window", "nowhere"}), 3, "gtk3-widget-factory");
    // No connection takes the place of an output that is not there.
    const auto closed = runProgram(
        {"sh", "-c", R"(exec "$0" "$@" >&-)", LUMETRY_AUDIT, "--pid", pid}, audited.options());
    expectRefusal(closed, 2, "standard output cannot be written to");
    const auto part = audited.audit({"--pid", pid, "--limit", "3"});
    EXPECT_NE(part.error.find("only a part of the window was audited"), std::string::npos);
    application.stop();
    expectRefusal(audited.audit({"--pid", pid, "--wait", "1"}), 3, "the window's application");
    application.resume();
    const auto clock = audited.desktop.start({"xclock"});
    const auto window = waitForWindow(audited.desktop.server(), hasClass("XClock"));
    expectRefusal(audited.audit({"--window", window.title, "--wait", "0"}), 3,
                  "tells nothing of its elements");
    // An application that goes while it is audited.
    ChildProcess audit({LUMETRY_AUDIT, "--pid", pid}, audited.options());
    application.terminate(std::chrono::milliseconds(0));
    ASSERT_TRUE(audit.wait());
    EXPECT_EQ(audit.status()->code, 3) << audit.standardOutput() << audit.standardError();
}

TEST(Audit, RefusesWhatMakesNoSense) {
    DesktopOptions options;
    options.windowManager = options.compositor = false;
    options.accessibility = AccessibilityBus::none;
    const AuditedDesktop audited(options);
    const struct {
        std::vector<std::string> arguments;
        std::string expected;
    } cases[] = {
        {{"12"}, "--help"},
        {{"--level", "A"}, "--help"},
        {{"--limit", "0"}, "--help"},
        {{"--wait", "nan"}, "--help"},
        {{"--json", "--sarif"}, "--help"},
        {{"--pid", "1", "--app", "x"}, "give one of"},
        {{"--"}, "give the command"},
        {{"--config", audited.file("nowhere.toml")}, "cannot be read"},
        {{"--config", audited.file("syntax.toml", "level = \n")}, "line 1"},
        {{"--config", audited.file("key.toml", "\n[contrast]\nminimal = 3\n")},
         "line 3: there is no \"minimal\" in [contrast]; it has enabled, minimum"},
        {{"--config", audited.file("value.toml", "level = \"A\"\n")},
         "line 1: \"level\" has to be"},
        {{"--config", audited.file("range.toml", "[contrast]\nminimum = 22\n")}, "from 1 to 21"},
        {{"--config", audited.file("reason.toml", "[[ignore]]\nrole = \"Image\"\n")},
         "needs a \"reason\""},
        {{"--config", audited.file("all.toml", "[[ignore]]\nreason = \"x\"\n")},
         "ignore everything"},
        {{"--baseline", audited.file("base.json", "[]")}, "is no baseline"},
        {{"--baseline", audited.file("text.json", R"({"version":"x","findings":[]})")},
         "is no baseline"},
        {{}, "at-spi2-core"},
    };
    for (const auto& [arguments, expected] : cases) {
        SCOPED_TRACE(expected);
        expectRefusal(audited.audit(arguments), 2, expected);
    }
    const auto usual = audited.file("lumetry-audit.toml");
    std::filesystem::create_symlink(usual, usual);
    expectRefusal(audited.audit({}), 2, "lumetry-audit.toml cannot be read");
}

/// The commands of the README's workflow, without their indentation.
std::string workflowCommands() {
    std::ifstream readme(LUMETRY_README);
    std::string commands;
    std::string line;
    const std::string begin = "      - run: |";
    while (std::getline(readme, line) && line.find(begin) == std::string::npos) {
    }
    const std::string indentation = "              ";
    while (std::getline(readme, line) && line.starts_with(indentation)) {
        commands += line.substr(indentation.size()) + "\n";
    }
    return commands;
}

TEST(Audit, RunsInTheWorkflowOfTheReadme) {
    AuditedDesktop audited;
    const std::string commands = workflowCommands();
    ASSERT_NE(commands.find("lumetry-audit"), std::string::npos) << commands;
    ProcessOptions options = audited.options();
    options.environment["PATH"] = std::filesystem::path(LUMETRY_AUDIT).parent_path().string() +
                                  ":" + options.environment["PATH"];
    for (const char* name : {"DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS"}) {
        options.environment.erase(name);
    }
    const auto finished = runProgram({"sh", "-c", commands}, options);
    EXPECT_EQ(finished.status.code, 1) << finished.output << finished.error;
    const Json log = Json::parse(std::ifstream(audited.file("audit.sarif")));
    EXPECT_FALSE(log["runs"][0]["results"].empty());
    EXPECT_GT(std::filesystem::file_size(audited.file("audit.html")), 10000U);
}

} // namespace
} // namespace lumetry::desktop
