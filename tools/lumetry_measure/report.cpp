#include "report.h"

#include "base/color_metrics.h"
#include "base/number_text.h"
#include "shared/json.h"

#include <algorithm>
#include <sstream>

namespace lumetry {
namespace {

Json jsonDistance(const std::optional<double>& distance) {
    return distance ? jsonNumber(*distance) : Json(nullptr);
}

std::string rectText(const std::optional<Rect>& rect) {
    return rect ? wholeNumber(rect->width) + " × " + wholeNumber(rect->height) + " at " +
                      wholeNumber(rect->x) + ", " + wholeNumber(rect->y)
                : "nothing";
}

std::string distanceText(const std::optional<double>& distance) {
    return distance ? wholeNumber(*distance) + "px" : "overlapping";
}

} // namespace

std::string textReport(const Measurement& measurement) {
    const HoverOutcome& outcome = measurement.outcome;
    std::ostringstream text;
    if (!outcome.header.empty()) {
        text << outcome.header << '\n';
    }
    std::size_t widest = 0;
    for (const GlanceRow& row : outcome.rows) {
        widest = std::max(widest, row.label.size());
    }
    for (const GlanceRow& row : outcome.rows) {
        text << row.label << std::string(widest - row.label.size() + 2, ' ') << row.value << '\n';
    }
    return text.str();
}

std::string jsonReport(const Measurement& measurement) {
    const HoverOutcome& outcome = measurement.outcome;
    Json rows = Json::array();
    for (const GlanceRow& row : outcome.rows) {
        rows.push_back({{"label", row.label},
                        {"value", row.value},
                        {"swatch", row.swatch ? Json(hexString(*row.swatch)) : Json(nullptr)}});
    }
    return dumped({{"path", outcome.path},
                   {"app", measurement.app},
                   {"header", outcome.header},
                   {"rows", std::move(rows)},
                   {"box", jsonRect(outcome.box)},
                   {"window", jsonRect(measurement.window)},
                   {"scale", jsonNumber(measurement.scale)}});
}

std::string textReport(const Measurement& from, const Measurement& to) {
    std::string text = "from        " + rectText(from.outcome.box) + "\nto          " +
                       rectText(to.outcome.box) + "\n";
    if (from.outcome.box && to.outcome.box) {
        const Distances distances = distancesBetween(*from.outcome.box, *to.outcome.box);
        text += "horizontal  " + distanceText(distances.horizontal) + "\nvertical    " +
                distanceText(distances.vertical) + "\n";
    }
    return text;
}

std::string jsonReport(const Measurement& from, const Measurement& to) {
    const auto& a = from.outcome.box;
    const auto& b = to.outcome.box;
    const Distances distances = a && b ? distancesBetween(*a, *b) : Distances();
    return dumped({{"from", jsonRect(a)},
                   {"to", jsonRect(b)},
                   {"horizontal", jsonDistance(distances.horizontal)},
                   {"vertical", jsonDistance(distances.vertical)},
                   {"scale", jsonNumber(from.scale)}});
}

} // namespace lumetry
