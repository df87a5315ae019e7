#include "pixels/pixel_box.h"

#include "pixels/color_sample.h"
#include "platform/screen_capture.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace lumetry {
namespace {

/// A place in the bitmap or a step between two: column and row.
struct Cell {
    int x = 0;
    int y = 0;

    friend Cell operator+(Cell a, Cell b) { return {a.x + b.x, a.y + b.y}; }
    friend Cell operator*(int factor, Cell step) { return {factor * step.x, factor * step.y}; }
};

/// Walks outwards from the centre of a bitmap through one colour.
class Scanner {
public:
    explicit Scanner(const Bitmap& bitmap)
        : bitmap_(bitmap), base_(rgb({bitmap.width / 2, bitmap.height / 2})) {}

    /// How many pixels from the centre to the edge in the direction: the nearest found by three
    /// walks side by side. Absent when fewer than two find one.
    [[nodiscard]] std::optional<int> edge(Cell direction) const {
        constexpr int trackDistance = 5;
        const Cell centre = {bitmap_.width / 2, bitmap_.height / 2};
        const Cell across = {direction.y, direction.x};
        int found = 0;
        int nearest = 0;
        for (const int track : {-trackDistance, 0, trackDistance}) {
            const Cell start = centre + track * across;
            const auto distance = isInterior(start) ? scan(start, direction) : std::nullopt;
            if (distance) {
                nearest = found == 0 ? *distance : std::min(nearest, *distance);
                ++found;
            }
        }
        constexpr int fewest = 2;
        return found >= fewest ? std::optional(nearest) : std::nullopt;
    }

private:
    [[nodiscard]] PixelColor rgb(Cell cell) const { return pixelColor(bitmap_.at(cell.x, cell.y)); }

    [[nodiscard]] bool isInterior(Cell cell) const {
        return cell.x >= 1 && cell.x <= bitmap_.width - 2 && cell.y >= 1 &&
               cell.y <= bitmap_.height - 2;
    }

    [[nodiscard]] bool matches(Cell cell) const {
        constexpr int largestDifference = 56;
        const PixelColor color = rgb(cell);
        return std::abs(color.red - base_.red) + std::abs(color.green - base_.green) +
                   std::abs(color.blue - base_.blue) <=
               largestDifference;
    }

    /// The number of pixels from the start to the last one before an edge; absent when the bitmap
    /// ends first.
    [[nodiscard]] std::optional<int> scan(Cell start, Cell direction) const {
        constexpr int shortestLine = 28;
        int distance = 0;
        Cell current = start;
        for (;;) {
            const Cell next = current + direction;
            if (!isInterior(next)) {
                return std::nullopt;
            }
            int step = 1;
            if (!matches(next)) {
                const auto behind = behindBand(current, direction);
                if (!behind || bandLength(next, {direction.y, direction.x}) >= shortestLine) {
                    return distance;
                }
                step = *behind;
            }
            distance += step;
            current = current + step * direction;
        }
    }

    /// Steps to the first matching pixel behind a change of colour; absent when the change is
    /// deeper than a band or reaches the end of the bitmap.
    [[nodiscard]] std::optional<int> behindBand(Cell current, Cell direction) const {
        constexpr int deepest = 7;
        for (int steps = 2; steps <= deepest; ++steps) {
            const Cell cell = current + steps * direction;
            if (!isInterior(cell)) {
                return std::nullopt;
            }
            if (matches(cell)) {
                return steps;
            }
        }
        return std::nullopt;
    }

    [[nodiscard]] int bandLength(Cell cell, Cell across) const {
        return 1 + runLength(cell, across) + runLength(cell, -1 * across);
    }

    [[nodiscard]] int runLength(Cell cell, Cell step) const {
        constexpr int longest = 30;
        int length = 0;
        for (cell = cell + step; length < longest && isInterior(cell) && !matches(cell);
             cell = cell + step) {
            ++length;
        }
        return length;
    }

    const Bitmap& bitmap_;
    PixelColor base_;
};

} // namespace

std::optional<Rect> pixelBox(ScreenCapture& capture, std::uint32_t windowNumber, Point point) {
    constexpr double reach = pixelBoxSquareSide / 2;
    const auto square = capture.captureBelow(
        {point.x - reach, point.y - reach, pixelBoxSquareSide, pixelBoxSquareSide}, windowNumber);
    return square ? pixelBoxIn(*square, point) : std::nullopt;
}

std::optional<Rect> pixelBoxIn(const Bitmap& square, Point point) {
    constexpr int smallestBitmap = 9;
    constexpr double smallestBox = 8;
    if (square.width < smallestBitmap || square.height < smallestBitmap) {
        return std::nullopt;
    }
    const Scanner scanner(square);
    constexpr std::array<Cell, 4> leftRightTopBottom = {{{-1, 0}, {1, 0}, {0, -1}, {0, 1}}};
    std::array<double, 4> distances{};
    for (std::size_t side = 0; side < distances.size(); ++side) {
        const auto edge = scanner.edge(leftRightTopBottom[side]);
        if (!edge) {
            return std::nullopt;
        }
        distances[side] = *edge;
    }
    const double scale = square.width / pixelBoxSquareSide;
    const auto [left, right, top, bottom] = distances;
    const Rect box = {point.x - left / scale, point.y - top / scale, (left + right) / scale,
                      (top + bottom) / scale};
    return box.width < smallestBox || box.height < smallestBox ? std::nullopt : std::optional(box);
}

} // namespace lumetry
