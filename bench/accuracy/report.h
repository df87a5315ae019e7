#pragma once

#include "browser.h"
#include "comparison.h"

#include <vector>

namespace lumetry::accuracy {

/// Prints a table of how often each row was asked for, shown and right; every row that was wrong or
/// missing; and how far the radii are off.
void printReport(const std::vector<Finding>& findings, Browser browser);

} // namespace lumetry::accuracy
