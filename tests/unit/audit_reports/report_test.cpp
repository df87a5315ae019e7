#include "lumetry_audit/reports/badge_places.h"
#include "lumetry_audit/reports/report.h"
#include "shared/json.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace lumetry {
namespace {

AuditReport reportWith(const std::vector<std::string>& kinds) {
    AuditReport report;
    report.audit.app = "pid:123";
    report.audit.title = "a: b/c";
    for (const std::string& kind : kinds) {
        Finding finding;
        finding.rule = Rule::consistency;
        finding.path = "Window / Button";
        finding.kind = kind;
        report.findings.push_back(finding);
    }
    return report;
}

std::string artifactOf(const AuditReport& report, const std::string& program) {
    const Json log = Json::parse(sarifReport(report, program));
    return log["runs"][0]["results"][0]["locations"][0]["physicalLocation"]["artifactLocation"]
              ["uri"];
}

TEST(SarifReport, ShowsFindingsAtARelativePlace) {
    AuditReport report = reportWith({"height"});
    EXPECT_EQ(artifactOf(report, ""), "a%3A%20b%2Fc");
    EXPECT_EQ(artifactOf(report, "./build/my app"), "build/my%20app");
    EXPECT_EQ(artifactOf(report, "/nowhere/bin/app"), "app");
    EXPECT_EQ(artifactOf(report, std::filesystem::current_path() / "build/app"), "build/app");
    report.audit.title = "";
    EXPECT_EQ(artifactOf(report, ""), "window");
    report.audit.app = "org.example.App";
    EXPECT_EQ(artifactOf(report, ""), "org.example.App");
}

TEST(SarifReport, TellsFindingsApart) {
    AuditReport report = reportWith({"height", "radius", "radius"});
    const auto fingerprints = [&report] {
        std::vector<std::string> found;
        const Json log = Json::parse(sarifReport(report, ""));
        for (const Json& result : log["runs"][0]["results"]) {
            EXPECT_EQ(result.contains("baselineState"), report.hasBaseline);
            found.push_back(result["partialFingerprints"]["primaryLocationLineHash"]);
        }
        return found;
    };
    const auto first = fingerprints();
    EXPECT_EQ(std::set<std::string>(first.begin(), first.end()).size(), 3U);
    report.hasBaseline = true;
    report.findings[0].path = "Window · retitled / Button";
    EXPECT_EQ(fingerprints(), first);
    const Json log = Json::parse(sarifReport(report, ""));
    EXPECT_EQ(log["runs"][0]["tool"]["driver"]["rules"][1]["name"], "TargetSize");
}

TEST(BadgePlaces, GiveEachFindingRoom) {
    const Rect window = {100, 50, 1366, 800};
    BadgePlaces places(window);
    std::vector<Point> taken;
    for (int number = 0; number < 200; ++number) {
        // Many at one place, and others close to it.
        const auto [left, edge, inside] =
            places.next({200.0 + number % 3, 150.0 + number % 7, 9, 9});
        const Point at = {left * narrowestPicture,
                          edge * narrowestPicture * 800 / 1366 - (inside ? 0 : badgeSize)};
        EXPECT_GE(at.x, 0);
        EXPECT_LE(at.x, narrowestPicture - badgeSize);
        EXPECT_GE(at.y, 0);
        for (const Point& other : taken) {
            EXPECT_GE(std::max(std::abs(at.x - other.x), std::abs(at.y - other.y)),
                      badgeSize - 1e-5);
        }
        taken.push_back(at);
    }
}

} // namespace
} // namespace lumetry
