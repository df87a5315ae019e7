#include "platform/linux/x11/overlay/tiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <numeric>
#include <tuple>
#include <utility>

namespace lumetry::x11 {
namespace {

/// Pixels. Smaller tiles would follow edges more closely, but each has its own cost.
constexpr double tileSize = 16;

/// How far from its outline a shape may show or fail to: for smoothing, and for outlines that are
/// moved onto whole pixels.
constexpr double edgeSpare = 1;

enum class Touch { none, evenly, partly };

bool within(const Rect& tile, const Rect& rect) {
    return !rect.isNull() && tile.minX() >= rect.minX() && tile.maxX() <= rect.maxX() &&
           tile.minY() >= rect.minY() && tile.maxY() <= rect.maxY();
}

/// Whether the tile lies inside a rounded rectangle, at least the margin away from its outline.
bool isInside(const Rect& tile, const Rect& rect, double radius, double margin) {
    const double corner = std::min({radius, rect.width / 2, rect.height / 2});
    return within(tile, inset(rect, margin, margin + corner)) ||
           within(tile, inset(rect, margin + corner, margin));
}

struct TouchOf {
    const Rect& tile;

    Touch operator()(const FillRoundedRect& command) const {
        return isInside(tile, command.rect, command.radius, edgeSpare) ? Touch::evenly
                                                                       : Touch::partly;
    }
    Touch operator()(const StrokeRoundedRect& command) const {
        return isInside(tile, command.rect, command.radius, command.lineWidth / 2 + edgeSpare)
                   ? Touch::none
                   : Touch::partly;
    }
    template<class Command>
    Touch operator()(const Command&) const {
        return Touch::partly;
    }
};

Touch touchOf(const DrawCommand& command, const Rect& tile) {
    return intersect(coverage(command), tile).isNull() ? Touch::none
                                                       : std::visit(TouchOf{tile}, command);
}

/// Joins neighbours into larger rectangles.
void merge(std::vector<Rect>& rects) {
    const auto join = [&rects](auto order, auto adjacent, auto extend) {
        std::ranges::sort(rects, {}, order);
        std::vector<Rect> joined;
        for (const Rect& rect : rects) {
            if (!joined.empty() && adjacent(joined.back(), rect)) {
                extend(joined.back(), rect);
            } else {
                joined.push_back(rect);
            }
        }
        rects = std::move(joined);
    };
    join([](const Rect& r) { return std::tuple(r.y, r.height, r.x); },
         [](const Rect& a, const Rect& b) {
             return a.y == b.y && a.height == b.height && a.maxX() == b.x;
         },
         [](Rect& a, const Rect& b) { a.width += b.width; });
    join([](const Rect& r) { return std::tuple(r.x, r.width, r.y); },
         [](const Rect& a, const Rect& b) {
             return a.x == b.x && a.width == b.width && a.maxY() == b.y;
         },
         [](Rect& a, const Rect& b) { a.height += b.height; });
}

/// What a drawing does to one tile.
struct TileContent {
    std::vector<std::size_t> touching; ///< numbers of commands
    bool even = true;                  ///< one colour throughout
};

TileContent contentOf(const DisplayList& list, std::span<const std::size_t> commands,
                      const Rect& tile) {
    TileContent content;
    for (const std::size_t index : commands) {
        const Touch touch = touchOf(list[index], tile);
        content.even = content.even && touch != Touch::partly;
        if (touch != Touch::none) {
            content.touching.push_back(index);
        }
    }
    return content;
}

std::vector<std::size_t> allOf(const DisplayList& list) {
    std::vector<std::size_t> commands(list.size());
    std::iota(commands.begin(), commands.end(), std::size_t{0});
    return commands;
}

class Planner {
public:
    Planner(const DisplayList& list, const DisplayList* before) : list_(list), before_(before) {}

    void divide(const Rect& tile, std::span<const Rect> areas,
                std::span<const std::size_t> commands,
                std::span<const std::size_t> commandsBefore) {
        std::vector<Rect> areasHere;
        std::ranges::copy_if(areas, std::back_inserter(areasHere),
                             [&](const Rect& area) { return !intersect(area, tile).isNull(); });
        if (areasHere.empty()) {
            return;
        }
        const TileContent now = contentOf(list_, commands, tile);
        const TileContent then =
            before_ ? contentOf(*before_, commandsBefore, tile) : TileContent{};
        const bool small = tile.width <= tileSize && tile.height <= tileSize;
        if (!small && (!now.even || !then.even)) {
            const auto [first, second] = halves(tile);
            divide(first, areasHere, now.touching, then.touching);
            divide(second, areasHere, now.touching, then.touching);
        } else if (!now.even) {
            plan_.rasterized.push_back(tile);
        } else if (before_ && then.even && sameColor(now, then)) {
            return;
        } else if (now.touching.empty()) {
            plan_.cleared.push_back(tile);
        } else {
            uniform_[now.touching].push_back(tile);
        }
    }

    TilePlan take() {
        merge(plan_.cleared);
        merge(plan_.rasterized);
        for (auto& [commands, areas] : uniform_) {
            const Point sample = areas.front().origin();
            merge(areas);
            plan_.uniform.push_back({sample, std::move(areas)});
        }
        return std::move(plan_);
    }

private:
    /// Only fills touch a tile evenly.
    [[nodiscard]] bool sameColor(const TileContent& now, const TileContent& then) const {
        const auto color = [](const DisplayList& list, std::size_t index) {
            return std::get<FillRoundedRect>(list[index]).color;
        };
        return std::ranges::equal(now.touching, then.touching, [&](std::size_t a, std::size_t b) {
            return color(list_, a) == color(*before_, b);
        });
    }

    static std::pair<Rect, Rect> halves(const Rect& tile) {
        const auto half = [](double length) {
            return std::max(std::round(length / 2 / tileSize) * tileSize, tileSize);
        };
        Rect first = tile;
        Rect second = tile;
        if (tile.width > tile.height) {
            first.width = half(tile.width);
            second.x += first.width;
            second.width -= first.width;
        } else {
            first.height = half(tile.height);
            second.y += first.height;
            second.height -= first.height;
        }
        return {first, second};
    }

    const DisplayList& list_;
    const DisplayList* before_;
    TilePlan plan_;
    /// By the commands that make up the colour.
    std::map<std::vector<std::size_t>, std::vector<Rect>> uniform_;
};

Rect onTiles(const Rect& rect) {
    const double left = std::floor(rect.minX() / tileSize) * tileSize;
    const double bottom = std::floor(rect.minY() / tileSize) * tileSize;
    return {left, bottom, std::ceil(rect.maxX() / tileSize) * tileSize - left,
            std::ceil(rect.maxY() / tileSize) * tileSize - bottom};
}

} // namespace

std::vector<Rect> TilePlan::all() const {
    std::vector<Rect> pieces = cleared;
    for (const Uniform& one : uniform) {
        pieces.insert(pieces.end(), one.areas.begin(), one.areas.end());
    }
    pieces.insert(pieces.end(), rasterized.begin(), rasterized.end());
    return pieces;
}

TilePlan planTiles(const DisplayList& list, std::span<const Rect> areas, Size view,
                   const DisplayList* before) {
    const Rect whole = {0, 0, view.width, view.height};
    Rect bounds = Rect::null();
    for (const Rect& area : areas) {
        bounds = unite(bounds, intersect(area, whole));
    }
    Planner planner(list, before);
    if (!bounds.isNull()) {
        planner.divide(intersect(onTiles(bounds), whole), areas, allOf(list),
                       before ? allOf(*before) : std::vector<std::size_t>{});
    }
    return planner.take();
}

bool covers(std::span<const Rect> pieces, const Rect& rect) {
    std::vector<Rect> left = {rect};
    for (const Rect& piece : pieces) {
        std::vector<Rect> next;
        for (const Rect& one : left) {
            const Rect shared = intersect(one, piece);
            if (shared.isNull()) {
                next.push_back(one);
                continue;
            }
            const std::array<Rect, 4> around = {
                {{one.x, one.y, one.width, shared.y - one.y},
                 {one.x, shared.maxY(), one.width, one.maxY() - shared.maxY()},
                 {one.x, shared.y, shared.x - one.x, shared.height},
                 {shared.maxX(), shared.y, one.maxX() - shared.maxX(), shared.height}}};
            std::ranges::copy_if(around, std::back_inserter(next),
                                 [](const Rect& part) { return !part.isEmpty(); });
        }
        left = std::move(next);
    }
    return left.empty();
}

} // namespace lumetry::x11
