#include "image_measurement.h"
#include "measurement.h"
#include "report.h"

#include "platform/accessibility.h"
#include "platform/input.h"
#include "probe/ax_access.h"
#include "probe/electron.h"
#include "shared/number_range.h"
#include "shared/readable_desktop.h"
#include "shared/standard_streams.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace lumetry;

constexpr int measured = 0;
constexpr int nothingThere = 1;
constexpr int cannotMeasure = 2;

int refuse(const std::string& problem) {
    std::cerr << "lumetry-measure: " << problem << '\n';
    return cannotMeasure;
}

/// The status, unless what was printed could not be.
int written(int status) {
    return std::cout << std::flush ? status : refuse("standard output cannot be written to.");
}

struct Request {
    bool json = false;
    std::vector<double> point;   ///< x and y, or empty for the pointer's place
    std::vector<double> to;      ///< x and y of the second point, or empty
    std::string image;           ///< a PNG instead of the screen, or empty
    std::optional<double> scale; ///< of the picture, in pixels for each point
};

bool found(const Measurement& measurement) {
    return measurement.outcome.box || !measurement.outcome.rows.empty();
}

/// What is said of one point, or of two and their distance.
struct ScreenReport {
    std::string text;
    int status = nothingThere;
};

ScreenReport reportOn(NativeDesktop& desktop, const Request& request,
                      const std::vector<Point>& points) {
    ProbeState state;
    state.lumetryPID = getpid();
    const Measurement first = measurePoint(desktop, state, points.front());
    ScreenReport report;
    if (points.size() == 1) {
        report.text = request.json ? jsonReport(first) : textReport(first);
        report.status = found(first) ? measured : nothingThere;
    } else {
        const Measurement second = measurePoint(desktop, state, points.back());
        report.text = request.json ? jsonReport(first, second) : textReport(first, second);
        report.status = first.outcome.box && second.outcome.box ? measured : nothingThere;
    }
    releaseElectronEnhancements(desktop.platform(), state);
    return report;
}

int measureScreen(const Request& request, int& argc, char** argv) {
    std::string problem;
    const ReadableDesktop opened = openReadableDesktop(argc, argv, problem);
    if (!opened.desktop) {
        return refuse(problem);
    }
    NativeDesktop& desktop = *opened.desktop;
    const Platform& platform = desktop.platform();
    platform.accessibility.createSystemWide().setMessagingTimeout(messagingTimeoutSeconds);
    const Point at = request.point.empty() ? flipped(platform.pointer.location(),
                                                     primaryDisplayHeight(platform.windowServer))
                                           : Point{request.point[0], request.point[1]};
    std::vector<Point> points = {at};
    if (!request.to.empty()) {
        points.push_back({request.to[0], request.to[1]});
    }
    problem = offScreenProblem(platform.windowServer, points);
    if (!problem.empty()) {
        std::cerr << "lumetry-measure: " << problem << '\n';
        return nothingThere;
    }
    const ScreenReport report = reportOn(desktop, request, points);
    if (const auto signal = desktop.terminationSignal()) {
        refuse(endedProblem(*signal));
        return statusAfter(*signal);
    }
    problem = lockProblem(desktop);
    if (!problem.empty()) {
        return refuse(problem);
    }
    std::cout << report.text;
    return written(report.status);
}

int measureImage(const Request& request) {
    std::string problem;
    const auto measurement = measureImageFile(request.image, {request.point[0], request.point[1]},
                                              request.scale, problem);
    if (!measurement) {
        return refuse(problem);
    }
    std::cout << (request.json ? jsonReport(*measurement) : textReport(*measurement));
    return written(found(*measurement) ? measured : nothingThere);
}

} // namespace

int main(int argc, char** argv) {
    reserveStandardStreams();
    Request request;
    CLI::App options("Measures the element at a point of the screen, as inspect mode shows it.",
                     "lumetry-measure");
    options.set_version_flag("--version", LUMETRY_VERSION);
    options.add_flag("--json", request.json, "Print one JSON object");
    options
        .add_option("point", request.point,
                    "X and Y in points from the top-left corner of the primary screen; default: "
                    "where the pointer is")
        ->expected(2)
        ->type_name("X Y");
    auto* to = options.add_option("--to", request.to, "Measure the distance to this second point")
                   ->expected(2)
                   ->type_name("X2 Y2");
    auto* image =
        options
            .add_option("--image", request.image,
                        "Analyse the pixels of a PNG file around X Y instead of the screen")
            ->type_name("FILE")
            ->excludes(to);
    options
        .add_option("--scale", request.scale,
                    "Pixels of that picture for each point; default: what its file declares, else "
                    "1")
        ->needs(image)
        ->check(numberRange(0.5, 8))
        ->type_name("SCALE");
    options.footer(
        "Exit status: 0 when something was measured, 1 when nothing is there, 2 for wrong "
        "usage, a desktop that cannot be read or a report that cannot be written.");
    try {
        options.parse(argc, argv);
    } catch (const CLI::CallForHelp& help) {
        return written(options.exit(help));
    } catch (const CLI::CallForVersion& version) {
        return written(options.exit(version));
    } catch (const CLI::ParseError& error) {
        return refuse(std::string(error.what()) + "; see lumetry-measure --help.");
    }
    if ((!request.to.empty() || !request.image.empty()) && request.point.empty()) {
        return refuse("give the point as X Y; see lumetry-measure --help.");
    }
    return request.image.empty() ? measureScreen(request, argc, argv) : measureImage(request);
}
