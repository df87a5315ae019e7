#pragma once

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <string>

namespace lumetry {

/// A number from least to most; CLI::Range lets "nan" pass.
inline CLI::Validator numberRange(double least, double most) {
    const std::string range = CLI::detail::to_string(least) + " to " + CLI::detail::to_string(most);
    return {[=](const std::string& text) {
                char* end = nullptr;
                const double value = std::strtod(text.c_str(), &end);
                return *end == '\0' && value >= least && value <= most
                           ? std::string()
                           : text + " is no number from " + range;
            },
            range};
}

} // namespace lumetry
