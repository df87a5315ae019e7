#include "probe/spacing.h"

#include "base/number_text.h"
#include "platform/accessibility.h"
#include "probe/ax_access.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <span>
#include <string_view>
#include <vector>

namespace lumetry {
namespace {

/// The frames of those elements that have one, in order, all asked for together.
std::vector<Rect> framesOf(Accessibility& accessibility, std::span<const AXUIElement> elements) {
    constexpr std::array<std::string_view, 2> attributes = {"AXPosition", "AXSize"};
    accessibility.prefetch(elements, attributes);
    std::vector<Rect> frames;
    for (const AXUIElement& element : elements) {
        if (const auto frame = axFrame(element)) {
            frames.push_back(*frame);
        }
    }
    return frames;
}

/// Faulty applications report frames that no arithmetic is worth doing with.
bool areFinite(std::span<const Rect> frames) {
    return std::ranges::all_of(frames, [](const Rect& frame) {
        return std::isfinite(frame.maxX()) && std::isfinite(frame.maxY());
    });
}

struct Insets {
    double top = 0;
    double right = 0;
    double bottom = 0;
    double left = 0;
};

std::string paddingText(const Insets& insets) {
    const auto pixels = [](double value) { return wholeNumber(value) + "px"; };
    if (insets.top == insets.bottom && insets.left == insets.right) {
        return insets.top == insets.left ? pixels(insets.top)
                                         : pixels(insets.top) + " " + pixels(insets.left);
    }
    return pixels(insets.top) + " " + pixels(insets.right) + " " + pixels(insets.bottom) + " " +
           pixels(insets.left);
}

/// An item along the axis in which the collection runs.
struct Item {
    double start = 0;
    double length = 0;

    [[nodiscard]] double end() const { return start + length; }
};

double spread(std::span<const Rect> frames, double Rect::*coordinate) {
    const auto [least, most] = std::ranges::minmax_element(frames, {}, coordinate);
    return (*most).*coordinate - (*least).*coordinate;
}

/// The value in the middle, the upper one of two. Sorts the values; there is at least one.
double median(std::vector<double>& values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// The spaces between neighbours, without overlaps and jumps.
/// @param rounding neighbours that overlap by no more touch
std::vector<double> gapsBetween(std::span<const Item> items, double rounding) {
    constexpr double firstJump = 200;
    std::vector<double> gaps;
    for (std::size_t i = 1; i < items.size(); ++i) {
        const double gap = items[i].start - items[i - 1].end();
        if (gap >= -rounding && gap < firstJump) {
            gaps.push_back(std::max(gap, 0.0));
        }
    }
    return gaps;
}

/// Whether the population standard deviation stays within what a regular layout shows.
bool areRegular(std::span<const double> gaps, double medianGap) {
    const auto count = static_cast<double>(gaps.size());
    const double mean = std::accumulate(gaps.begin(), gaps.end(), 0.0) / count;
    const double squares =
        std::accumulate(gaps.begin(), gaps.end(), 0.0, [mean](double sum, double gap) {
            return sum + (gap - mean) * (gap - mean);
        });
    return std::sqrt(squares / count) <= std::max(3.0, 0.4 * medianGap);
}

} // namespace

std::optional<std::string> axPadding(Accessibility& accessibility, const AXUIElement& element,
                                     const Rect& frame, bool guarded) {
    constexpr std::size_t mostChildren = 40;
    const auto children = axChildren(element);
    if (!children || children->empty() || children->size() > mostChildren) {
        return std::nullopt;
    }
    const auto frames = framesOf(accessibility, *children);
    const Rect content = std::accumulate(frames.begin(), frames.end(), Rect::null(), unite);
    if (content.isEmpty() || !areFinite(frames)) {
        return std::nullopt;
    }
    const auto insetOf = [](double distance) { return std::round(std::max(distance, 0.0)); };
    const Insets insets = {
        insetOf(content.minY() - frame.minY()), insetOf(frame.maxX() - content.maxX()),
        insetOf(frame.maxY() - content.maxY()), insetOf(content.minX() - frame.minX())};
    const std::array<double, 4> all = {insets.top, insets.right, insets.bottom, insets.left};
    const double limit = guarded ? 64 : 96;
    const bool plausible = std::ranges::all_of(
        all, [limit](double value) { return std::isfinite(value) && value <= limit; });
    if (!plausible || std::ranges::all_of(all, [](double value) { return value == 0; })) {
        return std::nullopt;
    }
    constexpr double leastAreaRatio = 0.2;
    const double frameArea = std::max(frame.width * frame.height, 1.0);
    if (guarded && !(content.width * content.height / frameArea >= leastAreaRatio)) {
        return std::nullopt;
    }
    return paddingText(insets);
}

std::optional<CollectionGap> collectionGap(Accessibility& accessibility, const AXUIElement& element,
                                           double rounding) {
    constexpr std::size_t fewestChildren = 2;
    constexpr std::size_t mostChildren = 300;
    constexpr std::size_t mostMeasured = 60;
    const auto children = axChildren(element);
    if (!children || children->size() < fewestChildren || children->size() > mostChildren) {
        return std::nullopt;
    }
    auto frames = framesOf(accessibility,
                           std::span(*children).first(std::min(children->size(), mostMeasured)));
    std::erase_if(frames, [](const Rect& frame) { return !(frame.width > 1 && frame.height > 1); });
    if (frames.size() < 2 || !areFinite(frames)) {
        return std::nullopt;
    }
    const bool vertical = spread(frames, &Rect::x) <= spread(frames, &Rect::y);
    std::vector<Item> items;
    std::vector<double> lengths;
    for (const Rect& frame : frames) {
        items.push_back(vertical ? Item{frame.y, frame.height} : Item{frame.x, frame.width});
        lengths.push_back(items.back().length);
    }
    std::ranges::stable_sort(items, {}, &Item::start);
    auto gaps = gapsBetween(items, rounding);
    if (gaps.empty()) {
        return std::nullopt;
    }
    const double typicalGap = median(gaps);
    if (!areRegular(gaps, typicalGap)) {
        return std::nullopt;
    }
    return CollectionGap{std::round(typicalGap), children->size(), std::round(median(lengths)),
                         vertical};
}

} // namespace lumetry
