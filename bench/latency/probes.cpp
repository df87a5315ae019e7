#include "probes.h"

#include <cstddef>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace lumetry::latency {
namespace {

using desktop::PrivateDesktop;

/// Runs a probe in the desktop with the points as its input, and returns what it printed.
std::istringstream run(const PrivateDesktop& desktop, const std::vector<std::string>& arguments,
                       const std::vector<Point>& points) {
    const auto file = desktop.folder() / "points";
    std::ofstream(file) << textOf(points);
    FILE* input = std::fopen(file.c_str(), "r");
    desktop::ProcessOptions options;
    options.environment = desktop.environment();
    options.standardInput = fileno(input);
    const auto finished = desktop::runProgram(arguments, options, std::chrono::minutes(3));
    std::fclose(input);
    if (finished.status.code != 0) {
        throw std::runtime_error(arguments.front() + ": " + finished.error);
    }
    return std::istringstream(finished.output);
}

std::vector<Sample> everySecond(const std::vector<Sample>& samples, std::size_t first) {
    std::vector<Sample> chosen;
    for (std::size_t i = first; i < samples.size(); i += 2) {
        chosen.push_back(samples[i]);
    }
    return chosen;
}

} // namespace

std::string textOf(const std::vector<Point>& points) {
    std::ostringstream text;
    for (const Point& point : points) {
        text << static_cast<int>(point.x) << ' ' << static_cast<int>(point.y) << '\n';
    }
    return text.str();
}

std::vector<Point> gridOver(const Rect& area) {
    constexpr int columns = 20;
    constexpr int rows = 10;
    std::vector<Point> points;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            points.push_back({area.x + (column + 0.5) * area.width / columns,
                              area.y + (row + 0.5) * area.height / rows});
        }
    }
    return points;
}

std::vector<Sample> probeSession(const PrivateDesktop& desktop, const std::vector<Point>& points) {
    auto output = run(desktop, {LUMETRY_LATENCY_PROBE}, points);
    std::vector<Sample> samples;
    for (Sample sample; output >> sample.update >> sample.repaint >> sample.requests >>
                        sample.waits >> sample.windowSystem >> sample.accessibility >>
                        sample.capture >> sample.windows >> sample.anew >> sample.bucket;) {
        samples.push_back(sample);
    }
    if (samples.size() != 2 * points.size()) {
        throw std::runtime_error("the probe did not sample every point");
    }
    return samples;
}

std::vector<Sample> firstSamples(const std::vector<Sample>& samples) {
    return everySecond(samples, 0);
}

std::vector<Sample> secondSamples(const std::vector<Sample>& samples) {
    return everySecond(samples, 1);
}

std::vector<double> valuesOf(const std::vector<Sample>& samples, double Sample::*field) {
    std::vector<double> values;
    values.reserve(samples.size());
    for (const Sample& sample : samples) {
        values.push_back(sample.*field);
    }
    return values;
}

void probeBare(const PrivateDesktop& desktop, const std::string& application,
               const std::vector<Point>& points, BareCalls& calls) {
    auto output = run(desktop, {LUMETRY_LATENCY_BARE, application}, points);
    for (double microseconds = 0, count = 0; output >> microseconds >> count;) {
        calls.microseconds.push_back(microseconds);
        calls.calls.push_back(count);
    }
}

} // namespace lumetry::latency
