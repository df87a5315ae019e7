#pragma once

#include <vector>

namespace lumetry::bench {

/// The value below which that share of the values lies; 0 without values.
[[nodiscard]] double quantile(std::vector<double> values, double share);
[[nodiscard]] double median(const std::vector<double>& values);
[[nodiscard]] double mean(const std::vector<double>& values);

/// What something took, again and again. Microseconds.
struct Cost {
    double median = 0;
    double slow = 0; ///< 95th percentile
};

[[nodiscard]] Cost costOf(const std::vector<double>& microseconds);

} // namespace lumetry::bench
