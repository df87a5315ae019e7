#include "lumetry_audit/reports/baseline.h"
#include "lumetry_audit/reports/configuration.h"
#include "lumetry_audit/reports/files.h"
#include "lumetry_audit/reports/report.h"
#include "lumetry_audit/reports/wording.h"
#include "progress.h"
#include "started_command.h"
#include "target.h"

#include "audit/rules.h"
#include "platform/accessibility.h"
#include "probe/electron.h"
#include "shared/number_range.h"
#include "shared/readable_desktop.h"
#include "shared/standard_streams.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace {

using namespace lumetry;

constexpr int nothingFound = 0;
constexpr int somethingFound = 1;
constexpr int cannotRead = 2;
constexpr int notAudited = 3;

constexpr double longestWaitSeconds = 3600;
constexpr const char* usualConfiguration = "lumetry-audit.toml";

int refuse(const std::string& problem, int status = cannotRead) {
    std::cerr << "lumetry-audit: " << problem << '\n';
    return status;
}

/// What is asked for on the command line; what is absent there is taken from the configuration.
struct Request {
    TargetRequest target;
    std::vector<double> point; ///< x and y, or empty
    std::vector<std::string> command;
    double waitSeconds = 10;
    double settleSeconds = 0.5;
    std::optional<std::size_t> limit;
    std::optional<std::string> level;
    std::optional<std::string> failOn;
    std::optional<std::string> configuration;
    std::optional<std::string> baseline;
    std::optional<std::string> newBaseline;
    std::optional<std::string> html;
    bool json = false;
    bool sarif = false;
};

std::string sentence(AuditFailure failure) {
    switch (failure) {
    case AuditFailure::noTree:
        return "the window's application tells nothing of its elements: start it with "
               "accessibility switched on.";
    case AuditFailure::noAnswer:
        return "the window's application does not answer any more.";
    case AuditFailure::ended:
        return "the window was closed while it was audited.";
    case AuditFailure::changed:
        return "windows were moved again and again while it was audited: leave the desktop alone "
               "meanwhile.";
    case AuditFailure::unfinished:
        return "the window's page is still loading, or empty: give it longer with --wait.";
    case AuditFailure::noPicture:
        return "the screen cannot be read, without which no colour is known: start lumetry, and "
               "grant Screen Recording.";
    case AuditFailure::cancelled:
    case AuditFailure::nothing:
    case AuditFailure::none:
        break;
    }
    return "no element of the window shows: bring it onto the screen and in front of others.";
}

std::optional<Configuration> configurationFor(const Request& request, std::string& problem) {
    Configuration configuration;
    const std::string file = request.configuration.value_or(usualConfiguration);
    std::error_code unclear;
    if (request.configuration || std::filesystem::symlink_status(file, unclear).type() !=
                                     std::filesystem::file_type::not_found) {
        auto read = readConfiguration(file, problem);
        if (!read) {
            return std::nullopt;
        }
        configuration = std::move(*read);
    }
    if (request.level) {
        configuration.thresholds.enhanced = *request.level == "AAA";
    }
    if (request.failOn) {
        configuration.failOn = failOnNamed(*request.failOn).value_or(configuration.failOn);
    }
    configuration.limit = request.limit.value_or(configuration.limit);
    return configuration;
}

/// What is found of an audited window, without what is to be ignored.
AuditReport reportOn(WindowAudit audit, const Configuration& configuration,
                     const Baseline& baseline) {
    AuditReport report;
    report.findings = findingsOf(audit, configuration.thresholds);
    report.ignored = std::erase_if(report.findings, [&](const Finding& finding) {
        return std::ranges::any_of(configuration.ignored, [&](const Ignored& ignored) {
            return ignored.matches(finding);
        });
    });
    apply(baseline, report.findings);
    report.enhanced = configuration.thresholds.enhanced;
    report.inventory = inventoryOf(audit.components);
    report.audit = std::move(audit);
    return report;
}

int statusOf(const AuditReport& report, FailOn failOn) {
    const bool fails = std::ranges::any_of(report.findings, [failOn](const Finding& finding) {
        return !finding.baseline &&
               (failOn == FailOn::warning ||
                (failOn == FailOn::error && finding.severity == Severity::error));
    });
    return fails ? somethingFound : nothingFound;
}

/// The status, unless what was printed could not be.
int written(int status) {
    return std::cout << std::flush ? status : refuse("standard output cannot be written to.");
}

/// Why there is no audit.
struct Refusal {
    std::string problem;
    int status = cannotRead;
};

int publish(const Request& request, const AuditReport& report, FailOn failOn) {
    std::string problem;
    if (request.html && !writeFile(*request.html, htmlReport(report), problem)) {
        return refuse(problem);
    }
    if (request.newBaseline && !writeBaseline(*request.newBaseline, report.findings, problem)) {
        return refuse(problem);
    }
    if (const std::string shortfall = shortfallText(report.audit); !shortfall.empty()) {
        std::cerr << "lumetry-audit: " << shortfall << '\n';
    }
    std::cout << (request.json ? jsonReport(report)
                  : request.sarif
                      ? sarifReport(report, request.command.empty() ? std::string()
                                                                    : request.command.front())
                      : textReport(report));
    return written(statusOf(report, failOn));
}

/// When it returns, a command that was started has ended, and signals end the program at once
/// again.
std::optional<WindowAudit> takeAudit(const Request& request, std::size_t limit, int& argc,
                                     char** argv, Refusal& refusal) {
    std::string& problem = refusal.problem;
    const ReadableDesktop opened = openReadableDesktop(argc, argv, problem);
    if (!opened.desktop) {
        return std::nullopt;
    }
    NativeDesktop& desktop = *opened.desktop;
    const Platform& platform = desktop.platform();
    // An audit is in no hurry, and starting programs are slow.
    constexpr float patienceSeconds = 5;
    platform.accessibility.createSystemWide().setMessagingTimeout(patienceSeconds);
    ProbeState state;
    state.lumetryPID = getpid();
    std::unique_ptr<StartedCommand> command;
    std::optional<AuditTarget> target;
    if (request.command.empty()) {
        target = findTarget(platform, request.target, problem);
    } else {
        command = StartedCommand::start(request.command, problem);
        if (!command) {
            return std::nullopt;
        }
        target = awaitWindow(desktop, *command, request.waitSeconds, problem);
    }
    std::optional<WindowAudit> result;
    AuditFailure failure = AuditFailure::none;
    if (target) {
        awaitElements(desktop, state, *target, command != nullptr, request.waitSeconds,
                      request.settleSeconds);
        Progress progress;
        AuditOptions options;
        options.limit = limit;
        options.progress = [&progress](std::size_t done, std::size_t known) {
            progress.show(done, known);
        };
        options.cancelled = [&desktop] { return desktop.terminationSignal().has_value(); };
        if (!options.cancelled()) {
            result = auditWindow(platform, state, *target, options, failure);
        }
        progress.clear();
        problem = sentence(failure);
        releaseElectronEnhancements(platform, state);
    }
    if (const auto signal = desktop.terminationSignal()) {
        refusal = {endedProblem(*signal), statusAfter(*signal)};
        return std::nullopt;
    }
    if (const auto locked = lockProblem(desktop); !locked.empty()) {
        refusal = {locked, cannotRead};
        return std::nullopt;
    }
    refusal.status = failure == AuditFailure::noPicture ? cannotRead : notAudited;
    return result;
}

void declare(CLI::App& options, Request& request) {
    options.set_version_flag("--version", LUMETRY_VERSION);
    options
        .add_option("point", request.point,
                    "The window at this place: X and Y in points from the top-left corner of the "
                    "primary screen")
        ->expected(2)
        ->type_name("X Y");
    options.add_option("--window", request.target.title, "The window with this in its title")
        ->type_name("TITLE");
    options.add_option("--pid", request.target.pid, "The frontmost window of this process")
        ->type_name("PID");
    options
        .add_option("--app", request.target.app,
                    "The frontmost window of the application with this identifier")
        ->type_name("BUNDLE-ID");
    options
        .add_option("--wait", request.waitSeconds,
                    "How long to wait for a command's window, and for elements; default: 10")
        ->check(numberRange(0, longestWaitSeconds))
        ->type_name("SECONDS");
    options
        .add_option("--settle", request.settleSeconds,
                    "How long nothing may change in a window that has just appeared; default: 0.5")
        ->check(numberRange(0, longestWaitSeconds))
        ->type_name("SECONDS");
    options.add_option("--limit", request.limit, "Measure at most that many components")
        ->check(CLI::Range(std::size_t{1}, std::size_t{1000000}))
        ->type_name("COUNT");
    options.add_option("--level", request.level, "Of WCAG, for contrast; default: AA")
        ->check(CLI::IsMember({"AA", "AAA"}))
        ->type_name("AA|AAA");
    options
        .add_option("--config", request.configuration,
                    "Thresholds and what to ignore; default: lumetry-audit.toml in this folder, "
                    "if there is one")
        ->type_name("FILE");
    options.add_option("--baseline", request.baseline, "Findings in this file do not fail")
        ->type_name("FILE");
    options
        .add_option("--write-baseline", request.newBaseline,
                    "Write what is found to this file, for --baseline")
        ->type_name("FILE");
    options.add_option("--fail-on", request.failOn, "What makes the status 1; default: error")
        ->check(CLI::IsMember({"error", "warning", "never"}))
        ->type_name("error|warning|never");
    auto* json = options.add_flag("--json", request.json, "Print one JSON object");
    options.add_flag("--sarif", request.sarif, "Print a SARIF log, for forges")->excludes(json);
    options
        .add_option("--html", request.html,
                    "Write a page with a picture of the window to this file")
        ->type_name("FILE");
    options.footer("Behind --, a command: it is started, its first window audited, and it is "
                   "ended. Without any of these, the active window is audited.\n"
                   "Exit status: 0 when nothing was found that fails (--fail-on), 1 when something "
                   "was, 2 for wrong usage, a desktop that cannot be read or a report that cannot "
                   "be written, 3 when the "
                   "window could not be audited.");
}

/// What is behind "--" is the command's own.
std::vector<std::string> takeCommand(int& argc, char** argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    const auto separator = std::ranges::find(arguments, "--");
    if (separator == arguments.end()) {
        return {};
    }
    argc = static_cast<int>(separator - arguments.begin());
    return {separator + 1, arguments.end()};
}

} // namespace

int main(int argc, char** argv) {
    reserveStandardStreams();
    // Whoever reads the report may go away; then it cannot be written.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    Request request;
    const bool hasCommand = std::find(argv, argv + argc, std::string("--")) != argv + argc;
    request.command = takeCommand(argc, argv);
    CLI::App options("Measures every element of a window and says what is wrong with it: contrast, "
                     "target sizes, names, text sizes, inconsistencies.",
                     "lumetry-audit");
    declare(options, request);
    try {
        options.parse(argc, argv);
    } catch (const CLI::CallForHelp& help) {
        return written(options.exit(help));
    } catch (const CLI::CallForVersion& version) {
        return written(options.exit(version));
    } catch (const CLI::ParseError& error) {
        return refuse(std::string(error.what()) + "; see lumetry-audit --help.");
    }
    if (!request.point.empty()) {
        request.target.point = Point{request.point[0], request.point[1]};
    }
    const TargetRequest& target = request.target;
    const int targets = (target.title ? 1 : 0) + (target.pid ? 1 : 0) + (target.app ? 1 : 0) +
                        (target.point ? 1 : 0) + (hasCommand ? 1 : 0);
    if (targets > 1) {
        return refuse("give one of --window, --pid, --app, X Y and -- COMMAND; see "
                      "lumetry-audit --help.");
    }
    if (hasCommand && request.command.empty()) {
        return refuse("give the command behind --; see lumetry-audit --help.");
    }
    std::string problem;
    const auto configuration = configurationFor(request, problem);
    if (!configuration) {
        return refuse(problem);
    }
    Baseline baseline;
    if (request.baseline) {
        auto read = readBaseline(*request.baseline, problem);
        if (!read) {
            return refuse(problem);
        }
        baseline = std::move(*read);
    }
    Refusal refusal;
    auto audit = takeAudit(request, configuration->limit, argc, argv, refusal);
    if (!audit) {
        return refuse(refusal.problem, refusal.status);
    }
    AuditReport report = reportOn(std::move(*audit), *configuration, baseline);
    report.hasBaseline = request.baseline.has_value();
    return publish(request, report, configuration->failOn);
}
