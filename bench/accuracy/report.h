#pragma once

#include "comparison.h"

#include <vector>

namespace lumetry::accuracy {

/// Prints a table of how often each row was asked for, shown and right; every row that was wrong or
/// missing; how far the radii are off; and in one line how many of the rows shown are right.
void printReport(const std::vector<Finding>& findings);

} // namespace lumetry::accuracy
