// Audits a window as lumetry-audit does, and says what that cost.
//
//   lumetry_audit_probe TITLE LIMIT    a part of the window's title, and of how many components
//
// Prints one line: microseconds until the report was there, elements that show, components that
// were measured, findings, accessibility requests, waits for them, captures, peak memory in
// kilobytes before and after. Status 3 when there is nothing to audit yet.

#include "audit/rules.h"
#include "audit/window_audit.h"
#include "counted_capture.h"
#include "lumetry_audit/reports/report.h"
#include "platform/accessibility.h"
#include "platform/native/native_desktop.h"
#include "platform/window_server.h"
#include "probe/electron.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <utility>

namespace {

using namespace lumetry;

constexpr int notYet = 3;

std::optional<AuditTarget> windowTitled(WindowServer& windowServer, const std::string& title) {
    for (const WindowInfo& window :
         windowServer.onScreenWindows().value_or(std::vector<WindowInfo>())) {
        if (window.ownerPID && window.bounds && window.number &&
            windowServer.windowName(*window.number).value_or("").find(title) != std::string::npos) {
            return AuditTarget{{*window.ownerPID, *window.bounds}, *window.number};
        }
    }
    return std::nullopt;
}

/// The most memory that this process has had resident. Kilobytes.
std::string peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmHWM:") {
            status >> word;
            return word;
        }
    }
    return "0";
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: lumetry_audit_probe TITLE LIMIT\n";
        return 2;
    }
    std::string problem;
    const auto desktop = NativeDesktop::open(argc, argv, problem);
    if (!desktop) {
        std::cerr << "lumetry_audit_probe: " << problem << '\n';
        return 1;
    }
    const Platform& ports = desktop->platform();
    CountedCapture capture(ports.screenCapture);
    const Platform platform = {ports.accessibility,  ports.windowServer,
                               ports.pointer,        ports.eventMonitors,
                               ports.applications,   ports.fileSystem,
                               ports.runLoop,        ports.defaults,
                               ports.overlayWindows, capture,
                               ports.screenLock};
    constexpr float patienceSeconds = 2; // lumetry-audit's
    ports.accessibility.createSystemWide().setMessagingTimeout(patienceSeconds);
    ProbeState state;
    state.lumetryPID = getpid();
    const auto target = windowTitled(ports.windowServer, argv[1]);
    if (!target) {
        return notYet;
    }
    // An application that bundles Chromium is woken by being asked.
    static_cast<void>(isElectronApp(platform, state, target->window.pid));

    const std::string memoryBefore = peakMemory();
    const RoundTrips before = desktop->roundTrips();
    const auto begin = std::chrono::steady_clock::now();
    AuditFailure failure = AuditFailure::none;
    auto audit =
        auditWindow(platform, state, *target, {std::strtoul(argv[2], nullptr, 10), {}}, failure);
    if (!audit) {
        return notYet;
    }
    AuditReport report;
    report.findings = findingsOf(*audit, {});
    report.inventory = inventoryOf(audit->components);
    report.audit = std::move(*audit);
    const std::string text = jsonReport(report);
    const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - begin;
    const RoundTrips after = desktop->roundTrips();
    std::cout << took.count() << ' ' << report.audit.elements << ' '
              << report.audit.components.size() << ' ' << report.findings.size() << ' '
              << after.accessibilityRequests - before.accessibilityRequests << ' '
              << after.accessibilityWaits - before.accessibilityWaits << ' ' << capture.captures()
              << ' ' << memoryBefore << ' ' << peakMemory() << '\n';
    return text.empty() ? 1 : 0;
}
