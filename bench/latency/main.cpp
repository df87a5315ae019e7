// What a hover costs: Lumetry's own session against the bare accessibility calls at the same
// points, over a real application, on a small and on a large screen; where the time goes, by the
// class of the element; from the pointer's move to the overlay's commit in a Plasma session; and
// what inspect mode costs at rest.
//
//   lumetry_latency [hover] [buckets] [plasma] [rest]    without arguments all of them

#include "reports.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    using namespace lumetry::latency;
    CLI::App command("What a hover of Lumetry's inspect mode costs.");
    std::vector<std::string> reports;
    command.add_option("reports", reports, "Only these reports")
        ->check(CLI::IsMember({"hover", "buckets", "plasma", "rest"}));
    CLI11_PARSE(command, argc, argv);
    const auto wanted = [&reports](const char* report) {
        return reports.empty() || std::ranges::find(reports, report) != reports.end();
    };
    try {
        if (wanted("hover")) {
            reportHover(1280, 800);
            reportHover(5120, 2880);
            reportHover(2560, 1600, 2);
        }
        if (wanted("buckets")) {
            reportBuckets();
        }
        if (wanted("plasma")) {
            reportPlasma();
        }
        if (wanted("rest")) {
            reportRest();
        }
    } catch (const std::exception& problem) {
        std::cerr << "lumetry_latency: " << problem.what() << '\n';
        return 1;
    }
    return 0;
}
