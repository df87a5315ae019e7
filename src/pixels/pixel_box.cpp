#include "pixels/pixel_box.h"

#include "pixels/color_sample.h"
#include "platform/screen_capture.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
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
    /// Pixels in a row or column: a first one and those behind it that are in the interior.
    struct Line {
        const std::uint32_t* first = nullptr;
        std::ptrdiff_t stride = 0;
        int length = 0; ///< without the first

        [[nodiscard]] std::uint32_t at(int index) const { return first[index * stride]; }
    };

    [[nodiscard]] PixelColor rgb(Cell cell) const { return pixelColor(bitmap_.at(cell.x, cell.y)); }

    [[nodiscard]] bool isInterior(Cell cell) const {
        return cell.x >= 1 && cell.x <= bitmap_.width - 2 && cell.y >= 1 &&
               cell.y <= bitmap_.height - 2;
    }

    /// @param cell in the interior
    [[nodiscard]] Line lineFrom(Cell cell, Cell direction) const {
        const auto room = [](int place, int step, int size) {
            return step < 0 ? place - 1 : size - 2 - place;
        };
        return {&bitmap_.pixels[static_cast<std::size_t>(cell.y) * bitmap_.width + cell.x],
                static_cast<std::ptrdiff_t>(direction.y) * bitmap_.width + direction.x,
                direction.x != 0 ? room(cell.x, direction.x, bitmap_.width)
                                 : room(cell.y, direction.y, bitmap_.height)};
    }

    [[nodiscard]] bool matches(std::uint32_t pixel) const {
        constexpr int largestDifference = 56;
        const PixelColor color = pixelColor(pixel);
        return std::abs(color.red - base_.red) + std::abs(color.green - base_.green) +
                       std::abs(color.blue - base_.blue) <=
                   largestDifference &&
               pixel != missingPixel;
    }

    /// The number of pixels from the start to the last one before an edge; absent when the bitmap
    /// ends first.
    [[nodiscard]] std::optional<int> scan(Cell start, Cell direction) const {
        const Line line = lineFrom(start, direction);
        int distance = 0;
        while (distance < line.length) {
            if (matches(line.at(distance + 1))) {
                ++distance;
                continue;
            }
            const auto behind = behindBand(line, distance);
            const Cell band = start + (distance + 1) * direction;
            if (!behind || isLine(band, {direction.y, direction.x})) {
                return distance;
            }
            distance += *behind;
        }
        return std::nullopt;
    }

    /// Steps to the first matching pixel behind a change of colour; absent when the change is
    /// deeper than a band or reaches the end of the bitmap or of the screens.
    [[nodiscard]] std::optional<int> behindBand(const Line& line, int distance) const {
        constexpr int deepest = 7;
        for (int steps = 2; steps <= std::min(deepest, line.length - distance); ++steps) {
            if (line.at(distance + steps - 1) == missingPixel) {
                return std::nullopt;
            }
            if (matches(line.at(distance + steps))) {
                return steps;
            }
        }
        return std::nullopt;
    }

    /// Whether the band goes on long enough on both sides of the cell to be a border or separator.
    [[nodiscard]] bool isLine(Cell cell, Cell across) const {
        constexpr int shortest = 28;
        const int ahead = 1 + runLength(lineFrom(cell, across), shortest - 1);
        return ahead + runLength(lineFrom(cell, -1 * across), shortest - ahead) >= shortest;
    }

    /// How many of the pixels behind the first, which does not match, do not match either; counted
    /// to the limit.
    [[nodiscard]] int runLength(const Line& line, int limit) const {
        const int longest = std::min(limit, line.length);
        // Most pixels of a stroke are alike.
        std::uint32_t differing = *line.first;
        int length = 0;
        while (length < longest) {
            const std::uint32_t pixel = line.at(length + 1);
            if (pixel != differing && matches(pixel)) {
                break;
            }
            differing = pixel;
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
