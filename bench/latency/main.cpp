// What a hover costs: Lumetry's own session against the bare accessibility calls at the same
// points, over a real application, on a small and on a large screen; where the time goes, by the
// class of the element; and what inspect mode costs at rest.
//
//   lumetry_latency

#include "reports.h"

#include <exception>
#include <iostream>

int main() {
    using namespace lumetry::latency;
    try {
        reportHover(1280, 800);
        reportHover(5120, 2880);
        reportBuckets();
        reportRest();
    } catch (const std::exception& problem) {
        std::cerr << "lumetry_latency: " << problem.what() << '\n';
        return 1;
    }
    return 0;
}
