// What an audit of a whole window costs, beside a walk over the same elements with libatspi alone:
// of a GTK application with widgets of all kinds and of a page with 2,000 elements in Chromium;
// and of a page with 20,000, by itself.
//
//   lumetry_audit_cost [widgets] [page] [large] [--beside PROBE]    without names all three
//
// PROBE is another build's lumetry_audit_probe, whose audits are compared with this one's.

#include "bench/shared/statistics.h"
#include "bench/shared/widget_factory.h"
#include "grid_page.h"

#include "rig/chromium.h"
#include "rig/private_desktop.h"
#include "rig/processes/wait_until.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <iostream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace lumetry;
using namespace lumetry::bench;

constexpr std::chrono::minutes patience{10};

struct AuditCost {
    double microseconds = 0;
    double elements = 0; ///< that show
    double components = 0;
    double findings = 0;
    double requests = 0;
    double waits = 0;
    double captures = 0;
    double memoryBefore = 0; ///< kilobytes
    double memory = 0;
};

struct WalkCost {
    double microseconds = 0;
    double elements = 0;
    double texts = 0;
    double calls = 0;
};

/// What is audited: a window by its title, and its application's name on the bus.
struct Subject {
    std::string title;
    std::string application;
    std::size_t limit = 5000;
};

std::istringstream outputOf(const desktop::PrivateDesktop& desktop,
                            const std::vector<std::string>& arguments, int toleratedStatus = 0) {
    desktop::ProcessOptions options;
    options.environment = desktop.environment();
    const auto finished = desktop::runProgram(arguments, options, patience);
    if (finished.status.code != 0 && finished.status.code != toleratedStatus) {
        throw std::runtime_error(arguments.front() + ": " + finished.error);
    }
    return std::istringstream(finished.output);
}

/// Absent as long as the application tells nothing of its elements.
std::optional<AuditCost> audit(const desktop::PrivateDesktop& desktop, const Subject& subject,
                               const std::string& probe = LUMETRY_AUDIT_PROBE) {
    constexpr int notYet = 3;
    auto output = outputOf(desktop, {probe, subject.title, std::to_string(subject.limit)}, notYet);
    AuditCost cost;
    return output >> cost.microseconds >> cost.elements >> cost.components >> cost.findings >>
                   cost.requests >> cost.waits >> cost.captures >> cost.memoryBefore >> cost.memory
               ? std::optional(cost)
               : std::nullopt;
}

AuditCost auditAgain(const desktop::PrivateDesktop& desktop, const Subject& subject,
                     const std::string& probe = LUMETRY_AUDIT_PROBE) {
    const auto cost = audit(desktop, subject, probe);
    if (!cost) {
        throw std::runtime_error(subject.title + " could not be audited any more");
    }
    return *cost;
}

WalkCost walk(const desktop::PrivateDesktop& desktop, const Subject& subject, bool cached) {
    std::vector<std::string> arguments = {LUMETRY_AUDIT_BARE, subject.application};
    if (cached) {
        arguments.emplace_back("cached");
    }
    auto output = outputOf(desktop, arguments);
    WalkCost cost;
    output >> cost.microseconds >> cost.elements >> cost.texts >> cost.calls;
    return cost;
}

/// Audits until a tree that is built once it is asked for has arrived as a whole.
AuditCost warmUp(const desktop::PrivateDesktop& desktop, const Subject& subject,
                 std::size_t fewestComponents) {
    std::optional<AuditCost> last;
    return *desktop::requireUntil(
        subject.title + " to tell of its elements",
        [&]() -> std::optional<AuditCost> {
            const auto before = last;
            last = audit(desktop, subject);
            const bool complete = last && before && last->components == before->components &&
                                  last->components >= static_cast<double>(fewestComponents);
            return complete ? last : std::nullopt;
        },
        patience);
}

template<typename Cost>
double medianOf(const std::vector<Cost>& costs, double Cost::*field) {
    std::vector<double> values;
    values.reserve(costs.size());
    for (const Cost& cost : costs) {
        values.push_back(cost.*field);
    }
    return median(values);
}

void printAudit(const char* what, const std::vector<AuditCost>& audits) {
    const auto of = [&](double AuditCost::*field) { return medianOf(audits, field); };
    const double elements = of(&AuditCost::elements);
    const double seconds = of(&AuditCost::microseconds) / 1e6;
    std::printf("  %-18s %7.0f ms  %5.0f elements, %.0f components, %.0f findings: "
                "%.0f elements/s, %.0f us each\n",
                what, seconds * 1e3, elements, of(&AuditCost::components), of(&AuditCost::findings),
                elements / seconds, seconds * 1e6 / elements);
    std::printf("    requests %.0f (%.2f each), waits %.0f (%.3f each), captures %.0f\n",
                of(&AuditCost::requests), of(&AuditCost::requests) / elements,
                of(&AuditCost::waits), of(&AuditCost::waits) / elements, of(&AuditCost::captures));
    constexpr double kilobytesPerMegabyte = 1024;
    std::printf("    peak memory %.1f MB, before the audit %.1f MB\n",
                of(&AuditCost::memory) / kilobytesPerMegabyte,
                of(&AuditCost::memoryBefore) / kilobytesPerMegabyte);
}

void printWalk(const char* what, const std::vector<WalkCost>& walks,
               const std::vector<AuditCost>& audits) {
    const auto of = [&](double WalkCost::*field) { return medianOf(walks, field); };
    const double microseconds = of(&WalkCost::microseconds);
    std::printf("  %-18s %7.0f ms  %5.0f elements, %.0f with text, %.0f calls: %.0f us each; the "
                "audit takes %.2f x as long, %.2f x per element\n",
                what, microseconds / 1e3, of(&WalkCost::elements), of(&WalkCost::texts),
                of(&WalkCost::calls), microseconds / of(&WalkCost::elements),
                medianOf(audits, &AuditCost::microseconds) / microseconds,
                medianOf(audits, &AuditCost::microseconds) /
                    medianOf(audits, &AuditCost::elements) /
                    (microseconds / of(&WalkCost::elements)));
}

/// All in turn, so that they find the same machine.
/// @param otherProbe empty for none
void compare(const desktop::PrivateDesktop& desktop, const Subject& subject,
             std::size_t fewestComponents, const std::string& otherProbe) {
    constexpr int rounds = 7;
    std::printf("%s, %d rounds, medians\n", subject.title.c_str(), rounds);
    static_cast<void>(warmUp(desktop, subject, fewestComponents));
    static_cast<void>(walk(desktop, subject, false));
    std::vector<AuditCost> audits;
    std::vector<AuditCost> others;
    std::vector<WalkCost> walks;
    std::vector<WalkCost> cachedWalks;
    for (int round = 0; round < rounds; ++round) {
        audits.push_back(auditAgain(desktop, subject));
        if (!otherProbe.empty()) {
            others.push_back(auditAgain(desktop, subject, otherProbe));
        }
        walks.push_back(walk(desktop, subject, false));
        cachedWalks.push_back(walk(desktop, subject, true));
    }
    printAudit("audit", audits);
    if (!others.empty()) {
        printAudit("by the other build", others);
        std::printf("    this build takes %.2f x as long as the other\n",
                    medianOf(audits, &AuditCost::microseconds) /
                        medianOf(others, &AuditCost::microseconds));
    }
    printWalk("bare walk", walks, audits);
    printWalk("with its cache", cachedWalks, audits);
    std::fflush(stdout);
}

void reportWidgets(const std::string& otherProbe) {
    constexpr std::size_t fewestComponents = 50;
    desktop::PrivateDesktop desktop;
    const WidgetFactory factory(desktop);
    compare(desktop, {WidgetFactory::name, WidgetFactory::name}, fewestComponents, otherProbe);
}

void reportPage(const std::string& otherProbe) {
    const GridPage page;
    desktop::PrivateDesktop desktop(page.screen());
    const auto browser = desktop::startChromiumWith(desktop, page.html());
    compare(desktop, {"Audited grid", "Chromium"}, page.items(), otherProbe);
}

void reportLargePage() {
    const GridPage page = {100, 200};
    desktop::PrivateDesktop desktop(page.screen());
    const auto browser = desktop::startChromiumWith(desktop, page.html());
    const Subject subject = {"Audited grid", "Chromium", page.items()};
    static_cast<void>(warmUp(desktop, subject, page.items() * 9 / 10));
    std::printf("%zu elements on a page, 3 rounds, medians\n", page.items());
    constexpr int rounds = 3;
    std::vector<AuditCost> audits;
    audits.reserve(rounds);
    for (int round = 0; round < rounds; ++round) {
        audits.push_back(auditAgain(desktop, subject));
    }
    printAudit("audit", audits);
}

} // namespace

int main(int argc, char** argv) {
    CLI::App command("What an audit of a whole window costs.");
    std::vector<std::string> reports;
    command.add_option("reports", reports, "Only these reports")
        ->check(CLI::IsMember({"widgets", "page", "large"}));
    std::string otherProbe;
    command.add_option("--beside", otherProbe, "Another build's lumetry_audit_probe")
        ->check(CLI::ExistingFile);
    CLI11_PARSE(command, argc, argv);
    const auto wanted = [&reports](const char* report) {
        return reports.empty() || std::ranges::find(reports, report) != reports.end();
    };
    try {
        if (wanted("widgets")) {
            reportWidgets(otherProbe);
        }
        if (wanted("page")) {
            reportPage(otherProbe);
        }
        if (wanted("large")) {
            reportLargePage();
        }
    } catch (const std::exception& problem) {
        std::cerr << "lumetry_audit_cost: " << problem.what() << '\n';
        return 1;
    }
    return 0;
}
