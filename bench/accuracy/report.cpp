#include "report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>

namespace lumetry::accuracy {
namespace {

struct Count {
    int asked = 0;
    int shown = 0;
    int right = 0;

    void add(const Finding& finding) {
        ++asked;
        shown += finding.said ? 1 : 0;
        right += finding.right ? 1 : 0;
    }
};

void printTable(const std::vector<Finding>& findings) {
    std::map<std::string, Count> counts;
    for (const Finding& finding : findings) {
        counts[finding.label].add(finding);
    }
    std::puts("| row | asked | shown | right |\n|---|---|---|---|");
    for (const auto& [label, count] : counts) {
        const std::string right = label == "radius" ? "estimate" : std::to_string(count.right);
        std::printf("| %s | %d | %d | %s |\n", label.c_str(), count.asked, count.shown,
                    right.c_str());
    }
}

void printProblems(const std::vector<Finding>& findings) {
    for (const bool shown : {true, false}) {
        std::printf("\n%s\n", shown ? "wrong" : "not shown");
        for (const Finding& finding : findings) {
            if (finding.right || finding.error || shown != finding.said.has_value()) {
                continue;
            }
            std::printf("  %-12s %-10s is %s%s%s\n", finding.element.c_str(), finding.label.c_str(),
                        finding.truth.c_str(), shown ? ", said " : "",
                        finding.said.value_or("").c_str());
        }
    }
}

void printRadii(const std::vector<Finding>& findings) {
    std::map<long, int> counts;
    double sum = 0;
    int radii = 0;
    for (const Finding& finding : findings) {
        if (finding.error) {
            ++counts[std::lround(*finding.error)];
            sum += std::abs(*finding.error);
            ++radii;
        }
    }
    std::printf("\nradius: %d estimates, off by %.1f px on average; how many are off by how much\n",
                radii, sum / std::max(radii, 1));
    for (const auto& [error, count] : counts) {
        std::printf("  %+3ld px  %d\n", error, count);
    }
    std::puts(
        "An edge between two pixels looks like a corner of one step, 3.4 px, of the estimate.");
}

/// Without what counts apart.
void printSum(const std::vector<Finding>& findings) {
    Count all;
    int shownRight = 0;
    for (const Finding& finding : findings) {
        if (!finding.apart) {
            all.add(finding);
            shownRight += finding.said && finding.right ? 1 : 0;
        }
    }
    std::printf("\nasked %d, shown %d, right %d (%.1f %%)\n", all.asked, all.shown, shownRight,
                100.0 * shownRight / std::max(all.shown, 1));
}

} // namespace

void printReport(const std::vector<Finding>& findings) {
    printTable(findings);
    printProblems(findings);
    printRadii(findings);
    printSum(findings);
}

} // namespace lumetry::accuracy
