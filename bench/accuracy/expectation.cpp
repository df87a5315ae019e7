#include "expectation.h"

#include "hex_color.h"

#include "base/color_metrics.h"
#include "base/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <numeric>
#include <string_view>
#include <utility>

namespace lumetry::accuracy {
namespace {

Expectation exactly(std::string label, const std::string& text) {
    return {std::move(label), text, [text](const std::string& said) { return said == text; }};
}

std::string pixels(double value) {
    return wholeNumber(value) + "px";
}

/// @param largestDifference of a channel, of 255
Expectation colored(std::string label, const Color& color, int largestDifference) {
    const std::string text = hexString(color);
    return {std::move(label), text, [=](const std::string& said) {
                const auto channels = channelsIn(said);
                const auto expected = channelsIn(text);
                return channels && std::ranges::equal(*channels, *expected, [=](int a, int b) {
                           return std::abs(a - b) <= largestDifference;
                       });
            }};
}

Expectation contrastOf(const Color& color, const Color& fill) {
    constexpr double rounding = 0.05;
    constexpr double ofFill = 0.02; // which is read from the screen
    const double ratio = wcagContrast(color, fill);
    return {"contrast", fixedText(ratio, 1) + ":1", [ratio](const std::string& said) {
                return std::abs(std::atof(said.c_str()) - ratio) <= rounding + ofFill * ratio;
            }};
}

std::string weightWord(int weight) {
    constexpr std::array<std::string_view, 9> words = {"thin",    "extralight", "light",
                                                       "regular", "medium",     "semibold",
                                                       "bold",    "extrabold",  "black"};
    return std::string(words.at(static_cast<std::size_t>(weight) / 100 - 1));
}

constexpr std::string_view separator = " · ";

/// Family and size; the weight is a row of its own here, for applications may not tell it.
Expectation fontOf(const std::string& family, double size) {
    const std::string text = family + std::string(separator) + pixels(size);
    return {"font", text, [text](const std::string& said) {
                return said == text || said.starts_with(text + std::string(separator));
            }};
}

/// The numbers in a row such as "64 × 33" or "8px 16px".
std::vector<double> numbersIn(const std::string& text) {
    constexpr const char* digits = "0123456789";
    std::vector<double> numbers;
    for (auto start = text.find_first_of(digits); start != std::string::npos;) {
        numbers.push_back(std::atof(text.c_str() + start));
        start = text.find_first_of(digits, text.find_first_not_of(digits, start));
    }
    return numbers;
}

/// Top, right, bottom and left as the row writes them.
std::string paddingText(const std::array<double, 4>& sides) {
    const auto& [top, right, bottom, left] = sides;
    if (top != bottom || left != right) {
        return pixels(top) + " " + pixels(right) + " " + pixels(bottom) + " " + pixels(left);
    }
    return top == left ? pixels(top) : pixels(top) + " " + pixels(left);
}

/// Top, right, bottom and left of the numbers that the row shortens them to.
std::vector<double> paddingIn(const std::string& said) {
    auto numbers = numbersIn(said);
    switch (numbers.size()) {
    case 1:
        return {numbers[0], numbers[0], numbers[0], numbers[0]};
    case 2:
        return {numbers[0], numbers[1], numbers[0], numbers[1]};
    default:
        return numbers;
    }
}

std::array<double, 4> sidesBetween(const Rect& content, const Rect& frame) {
    return {content.minY() - frame.minY(), frame.maxX() - content.maxX(),
            frame.maxY() - content.maxY(), content.minX() - frame.minX()};
}

Rect boxAround(const std::vector<Rect>& places) {
    return std::accumulate(places.begin(), places.end(), Rect::null(), unite);
}

bool runsDown(const std::vector<Rect>& items) {
    return items[1].minY() >= items[0].maxY();
}

double gapOf(const std::vector<Rect>& items) {
    return runsDown(items) ? items[1].minY() - items[0].maxY() : items[1].minX() - items[0].maxX();
}

/// The screen's pixels, between which the ends of a length may lie.
struct Grid {
    double scale = 1; ///< pixels to a point

    /// Whether a whole number of points stands for a length.
    [[nodiscard]] bool isLength(double said, double length) const {
        constexpr double half = 0.5;
        return std::abs(said - length) < half + half / scale;
    }

    /// The whole pixels that a place takes up, in points.
    [[nodiscard]] Rect around(const Rect& place) const {
        const double left = std::floor(place.minX() * scale) / scale;
        const double top = std::floor(place.minY() * scale) / scale;
        return {left, top, std::ceil(place.maxX() * scale) / scale - left,
                std::ceil(place.maxY() * scale) / scale - top};
    }
};

Expectation sizeOf(const Rect& place, const Grid& grid) {
    const Rect outer = grid.around(place);
    const auto holds = [=](const std::string& said) {
        const auto numbers = numbersIn(said);
        return numbers.size() == 2 &&
               (grid.isLength(numbers[0], place.width) || numbers[0] == std::round(outer.width)) &&
               (grid.isLength(numbers[1], place.height) || numbers[1] == std::round(outer.height));
    };
    return {"size", wholeNumber(outer.width) + " × " + wholeNumber(outer.height), holds};
}

Expectation lengthOf(std::string label, double length, const Grid& grid) {
    return {std::move(label), pixels(length), [=](const std::string& said) {
                const auto numbers = numbersIn(said);
                return numbers.size() == 1 && grid.isLength(numbers[0], length);
            }};
}

Expectation paddingOf(const std::array<double, 4>& sides, const Grid& grid) {
    return {"padding", paddingText(sides), [=](const std::string& row) {
                return std::ranges::equal(paddingIn(row), sides, [&](double said, double length) {
                    return grid.isLength(said, length);
                });
            }};
}

using Rows = std::vector<Expectation>;

void addTypography(Rows& rows, const Truth& truth, const char* colorLabel) {
    if (truth.family && truth.fontSize) {
        rows.push_back(fontOf(*truth.family, *truth.fontSize));
    }
    if (truth.fontWeight) {
        rows.push_back(exactly("weight", weightWord(*truth.fontWeight)));
    }
    if (truth.color) {
        rows.push_back(colored(colorLabel, *truth.color, 0));
    }
    if (truth.color && truth.fill) {
        rows.push_back(contrastOf(*truth.color, *truth.fill));
    }
}

void addSurface(Rows& rows, const Truth& truth, const Grid& grid) {
    constexpr int fillTolerance = 2;
    if (truth.fill) {
        rows.push_back(colored("fill", *truth.fill, fillTolerance));
    }
    if (truth.padding) {
        rows.push_back(paddingOf(*truth.padding, grid));
    } else if (truth.frame && (truth.text || !truth.items.empty())) {
        const Rect content = truth.items.empty() || (truth.text && truth.kind != "group")
                                 ? *truth.text
                                 : boxAround(truth.items);
        rows.push_back(paddingOf(sidesBetween(content, *truth.frame), grid));
    }
}

void addItems(Rows& rows, const Truth& truth, const Grid& grid) {
    constexpr std::size_t fewestInGroup = 3;
    constexpr std::size_t fewestInList = 2;
    const auto& items = truth.items;
    const bool isList = truth.kind == "list";
    if (items.size() < (isList ? fewestInList : fewestInGroup)) {
        return;
    }
    rows.push_back(lengthOf("gap", gapOf(items), grid));
    if (isList) {
        rows.push_back(runsDown(items) ? lengthOf("row height", items[0].height, grid)
                                       : lengthOf("item width", items[0].width, grid));
        rows.push_back(exactly("items", std::to_string(items.size())));
    }
}

void addPicture(Rows& rows, const Truth& truth) {
    if (truth.fill) {
        rows.push_back(colored("pixel", *truth.fill, 0));
    }
    if (const auto ratio = aspectString(truth.frame.value_or(Rect()).size())) {
        rows.push_back(exactly("ratio", *ratio));
    }
}

} // namespace

std::vector<Expectation> expectationsOf(const Truth& truth, double scale) {
    const Grid grid{scale};
    Rows rows;
    if (const auto& place = truth.kind == "text" && truth.text ? truth.text : truth.frame) {
        rows.push_back(sizeOf(*place, grid));
    }
    if (truth.kind == "text" || truth.kind == "heading") {
        addTypography(rows, truth, "color");
    } else if (truth.kind == "control" || truth.kind == "input") {
        addSurface(rows, truth, grid);
        addTypography(rows, truth, "text");
    } else if (truth.kind == "group") {
        addSurface(rows, truth, grid);
        addItems(rows, truth, grid);
    } else if (truth.kind == "list") {
        addItems(rows, truth, grid);
    } else if (truth.kind == "picture") {
        addPicture(rows, truth);
    }
    return rows;
}

bool hasCorners(const Truth& truth) {
    return truth.radius && truth.kind != "text" && truth.kind != "heading" && truth.kind != "list";
}

} // namespace lumetry::accuracy
