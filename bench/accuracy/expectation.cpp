#include "expectation.h"

#include "base/color_metrics.h"
#include "base/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <optional>
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

std::optional<std::array<int, 3>> channelsIn(const std::string& text) {
    const auto hash = text.find('#');
    std::array<unsigned, 3> read{};
    if (hash == std::string::npos ||
        std::sscanf(text.c_str() + hash, "#%2x%2x%2x", &std::get<0>(read), &std::get<1>(read),
                    &std::get<2>(read)) != 3) {
        return std::nullopt;
    }
    return std::array{static_cast<int>(read[0]), static_cast<int>(read[1]),
                      static_cast<int>(read[2])};
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

constexpr int fillTolerance = 2;

Expectation contrastOf(const Truth& truth) {
    constexpr double tolerance = 0.2; // of the fill, which is read from the screen
    const double ratio = wcagContrast(truth.color, truth.fill);
    return {"contrast", fixedText(ratio, 1) + ":1", [ratio](const std::string& said) {
                return std::abs(std::atof(said.c_str()) - ratio) <= tolerance;
            }};
}

std::string weightWord(int weight) {
    constexpr std::array<std::string_view, 9> words = {"thin",    "extralight", "light",
                                                       "regular", "medium",     "semibold",
                                                       "bold",    "extrabold",  "black"};
    return std::string(words[static_cast<std::size_t>(weight) / 100 - 1]);
}

constexpr std::string_view separator = " · ";

/// Family and size; the weight is a row of its own here, for applications may not tell it.
Expectation fontOf(const Truth& truth) {
    const std::string text = truth.family + std::string(separator) + pixels(truth.fontSize);
    return {"font", text, [text](const std::string& said) {
                return said == text || said.starts_with(text + std::string(separator));
            }};
}

/// The whole pixels that a place takes up.
Rect onScreen(const Rect& place) {
    const double left = std::floor(place.minX());
    const double top = std::floor(place.minY());
    return {left, top, std::ceil(place.maxX()) - left, std::ceil(place.maxY()) - top};
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

/// Whether a whole number of pixels stands for a length whose ends may lie between two.
bool isLength(double said, double length) {
    return std::abs(said - length) < 1;
}

Expectation sizeOf(const Rect& place) {
    const Rect pixel = onScreen(place);
    const auto holds = [=](const std::string& said) {
        const auto numbers = numbersIn(said);
        return numbers.size() == 2 &&
               (isLength(numbers[0], place.width) || numbers[0] == pixel.width) &&
               (isLength(numbers[1], place.height) || numbers[1] == pixel.height);
    };
    return {"size", wholeNumber(pixel.width) + " × " + wholeNumber(pixel.height), holds};
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

Expectation paddingAround(const Rect& content, const Rect& frame) {
    const std::array<double, 4> sides = {
        content.minY() - frame.minY(), frame.maxX() - content.maxX(), frame.maxY() - content.maxY(),
        content.minX() - frame.minX()};
    return {"padding", paddingText(sides), [sides](const std::string& said) {
                return std::ranges::equal(paddingIn(said), sides, isLength);
            }};
}

Rect boxAround(const std::vector<Rect>& places) {
    return std::accumulate(places.begin(), places.end(), Rect::null(), unite);
}

std::vector<Expectation> textRows(const Truth& truth, const char* colorLabel) {
    return {fontOf(truth), exactly("weight", weightWord(truth.fontWeight)),
            colored(colorLabel, truth.color, 0), contrastOf(truth)};
}

void append(std::vector<Expectation>& rows, std::vector<Expectation> more) {
    std::ranges::move(more, std::back_inserter(rows));
}

bool runsDown(const std::vector<Rect>& items) {
    return items[1].minY() >= items[0].maxY();
}

double gapOf(const std::vector<Rect>& items) {
    return runsDown(items) ? items[1].minY() - items[0].maxY() : items[1].minX() - items[0].maxX();
}

std::vector<Expectation> listRows(const Truth& truth) {
    const Rect& first = truth.items.front();
    return {exactly("gap", pixels(gapOf(truth.items))),
            runsDown(truth.items) ? exactly("row height", pixels(first.height))
                                  : exactly("item width", pixels(first.width)),
            exactly("items", std::to_string(truth.items.size()))};
}

std::vector<Expectation> groupRows(const Truth& truth) {
    constexpr std::size_t fewestWithGap = 3;
    std::vector<Expectation> rows = {colored("fill", truth.fill, fillTolerance),
                                     paddingAround(boxAround(truth.items), truth.frame)};
    if (truth.items.size() >= fewestWithGap) {
        rows.push_back(exactly("gap", pixels(gapOf(truth.items))));
    }
    return rows;
}

std::vector<Expectation> pictureRows(const Truth& truth) {
    std::vector<Expectation> rows = {colored("pixel", truth.fill, 0)};
    if (auto ratio = aspectString(truth.frame.size())) {
        rows.push_back(exactly("ratio", std::move(*ratio)));
    }
    return rows;
}

} // namespace

std::vector<Expectation> expectationsOf(const Truth& truth) {
    std::vector<Expectation> rows = {sizeOf(truth.kind == "text" ? truth.text : truth.frame)};
    if (truth.kind == "text" || truth.kind == "heading") {
        append(rows, textRows(truth, "color"));
    } else if (truth.kind == "control" || truth.kind == "input") {
        rows.push_back(colored("fill", truth.fill, fillTolerance));
        // The text of an input stands in a box of its own, which fills what the padding leaves.
        rows.push_back(truth.kind == "input" ? exactly("padding", paddingText(truth.padding))
                                             : paddingAround(truth.text, truth.frame));
        append(rows, textRows(truth, "text"));
    } else if (truth.kind == "list") {
        append(rows, listRows(truth));
    } else if (truth.kind == "group") {
        append(rows, groupRows(truth));
    } else if (truth.kind == "picture") {
        append(rows, pictureRows(truth));
    }
    return rows;
}

bool hasCorners(const Truth& truth) {
    return truth.kind == "control" || truth.kind == "input" || truth.kind == "group" ||
           truth.kind == "picture";
}

} // namespace lumetry::accuracy
