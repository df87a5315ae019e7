#include "report.h"

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
};

void printTable(const std::vector<Finding>& findings) {
    std::map<std::string, Count> counts;
    for (const Finding& finding : findings) {
        Count& count = counts[finding.label];
        ++count.asked;
        count.shown += finding.said ? 1 : 0;
        count.right += finding.right && finding.label != "radius" ? 1 : 0;
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
            const bool missing = !finding.said && finding.label != "no radius";
            if (shown ? finding.said && !finding.right : missing) {
                std::printf("  %-12s %-10s is %s%s%s\n", finding.element.c_str(),
                            finding.label.c_str(), finding.truth.c_str(), shown ? ", said " : "",
                            finding.said.value_or("").c_str());
            }
        }
    }
}

/// Why rows may be wrong or missing though all is well.
void printLimits(Browser browser) {
    std::puts(
        browser == Browser::firefox
            ? "\nFirefox tells sizes of fonts in whole points: 15 px are 11 pt, and so are 14 "
              "px. It tells nothing\nof what is inside a field, and no text of a drop-down. "
              "It goes by another name here: of what\ngoes by a browser's own name, only "
              "the size is shown."
            : "\nChromium tells no weight but bold, or where the family's name says it; "
              "nothing of what is inside\na field, and no text of a drop-down.");
    std::puts("An edge between two pixels looks like a corner of one step, 3.4 px, of the radius "
              "estimate.");
}

void printRadii(const std::vector<Finding>& findings) {
    std::map<int, int> counts;
    double sum = 0;
    int radii = 0;
    for (const Finding& finding : findings) {
        if (finding.label == "radius" && finding.said) {
            ++counts[static_cast<int>(std::lround(finding.radiusError))];
            sum += std::abs(finding.radiusError);
            ++radii;
        }
    }
    std::printf("\nradius: %d estimates, off by %.1f px on average; how many are off by how much\n",
                radii, radii > 0 ? sum / radii : 0.0);
    for (const auto& [error, count] : counts) {
        std::printf("  %+3d px  %d\n", error, count);
    }
}

} // namespace

void printReport(const std::vector<Finding>& findings, Browser browser) {
    printTable(findings);
    printProblems(findings);
    printRadii(findings);
    printLimits(browser);
}

} // namespace lumetry::accuracy
