#include "bench/shared/statistics.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace lumetry::bench {

double quantile(std::vector<double> values, double share) {
    if (values.empty()) {
        return 0;
    }
    std::ranges::sort(values);
    return values[std::min(values.size() - 1,
                           static_cast<std::size_t>(share * static_cast<double>(values.size())))];
}

double median(const std::vector<double>& values) {
    return quantile(values, 0.5);
}

double mean(const std::vector<double>& values) {
    return values.empty() ? 0
                          : std::accumulate(values.begin(), values.end(), 0.0) /
                                static_cast<double>(values.size());
}

Cost costOf(const std::vector<double>& microseconds) {
    return {median(microseconds), quantile(microseconds, 0.95)};
}

} // namespace lumetry::bench
