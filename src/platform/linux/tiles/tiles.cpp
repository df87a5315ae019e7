#include "platform/linux/tiles/tiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <numeric>
#include <optional>
#include <tuple>
#include <utility>

namespace lumetry {
namespace {

/// Pixels. Smaller tiles would follow edges more closely, but each has its own cost.
constexpr int tileSize = 16;

/// How far from its outline a shape may show or fail to: for smoothing, and for outlines that are
/// moved onto whole pixels.
constexpr double edgeSpare = 1;

enum class Touch {
    none,
    evenly,
    inColumns, ///< along an upright edge: the same in every row
    inRows,    ///< along a level edge: the same in every column
    partly,
};

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

/// How the outline of a rounded rectangle runs through a tile.
/// @param margin how far from the outline it may show
Touch alongEdge(const Rect& tile, const Rect& rect, double radius, double margin) {
    const double corner = std::min({radius, rect.width / 2, rect.height / 2}) + margin;
    if (tile.minY() >= rect.minY() + corner && tile.maxY() <= rect.maxY() - corner) {
        return Touch::inColumns;
    }
    return tile.minX() >= rect.minX() + corner && tile.maxX() <= rect.maxX() - corner
               ? Touch::inRows
               : Touch::partly;
}

struct TouchOf {
    const Rect& tile;

    Touch operator()(const FillRoundedRect& command) const {
        return isInside(tile, command.rect, command.radius, edgeSpare)
                   ? Touch::evenly
                   : alongEdge(tile, command.rect, command.radius, edgeSpare);
    }
    Touch operator()(const StrokeRoundedRect& command) const {
        const double margin = command.lineWidth / 2 + edgeSpare;
        return isInside(tile, command.rect, command.radius, margin)
                   ? Touch::none
                   : alongEdge(tile, command.rect, command.radius, margin);
    }
    template<class Command>
    Touch operator()(const Command&) const {
        return Touch::partly;
    }
};

Touch touchOf(const DrawCommand& command, const Rect& covered, const Rect& tile) {
    return intersect(covered, tile).isNull() ? Touch::none : std::visit(TouchOf{tile}, command);
}

/// A drawing, and what each of its commands covers.
struct Drawing {
    explicit Drawing(const DisplayList& commands) : list(commands) {
        std::ranges::transform(list, std::back_inserter(covered), coverage);
    }

    const DisplayList& list;
    std::vector<Rect> covered;
};

/// Joins neighbours into larger rectangles.
void merge(std::vector<IntRect>& rects) {
    const auto join = [&rects](auto order, auto adjacent, auto extend) {
        std::ranges::sort(rects, {}, order);
        std::vector<IntRect> joined;
        for (const IntRect& rect : rects) {
            if (!joined.empty() && adjacent(joined.back(), rect)) {
                extend(joined.back(), rect);
            } else {
                joined.push_back(rect);
            }
        }
        rects = std::move(joined);
    };
    join([](const IntRect& r) { return std::tuple(r.y, r.height, r.x); },
         [](const IntRect& a, const IntRect& b) {
             return a.y == b.y && a.height == b.height && a.endX() == b.x;
         },
         [](IntRect& a, const IntRect& b) { a.width += b.width; });
    join([](const IntRect& r) { return std::tuple(r.x, r.width, r.y); },
         [](const IntRect& a, const IntRect& b) {
             return a.x == b.x && a.width == b.width && a.endY() == b.y;
         },
         [](IntRect& a, const IntRect& b) { a.height += b.height; });
}

/// What a drawing does to one tile.
struct TileContent {
    std::vector<std::size_t> touching; ///< numbers of commands
    bool inColumns = true;             ///< one colour in each column
    bool inRows = true;                ///< one colour in each row

    [[nodiscard]] bool even() const { return inColumns && inRows; }
};

TileContent contentOf(const Drawing& drawing, std::span<const std::size_t> commands,
                      const IntRect& tile) {
    TileContent content;
    const Rect area = toRect(tile);
    for (const std::size_t index : commands) {
        const Touch touch = touchOf(drawing.list[index], drawing.covered[index], area);
        content.inColumns = content.inColumns && touch != Touch::partly && touch != Touch::inRows;
        content.inRows = content.inRows && touch != Touch::partly && touch != Touch::inColumns;
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
    Planner(const DisplayList& list, const DisplayList* before) : now_(list) {
        if (before != nullptr) {
            before_.emplace(*before);
        }
    }

    void divide(const IntRect& tile, std::span<const Rect> areas,
                std::span<const std::size_t> commands,
                std::span<const std::size_t> commandsBefore) {
        std::vector<Rect> areasHere;
        std::ranges::copy_if(
            areas, std::back_inserter(areasHere),
            [whole = toRect(tile)](const Rect& area) { return !intersect(area, whole).isNull(); });
        if (areasHere.empty()) {
            return;
        }
        const TileContent now = contentOf(now_, commands, tile);
        const TileContent then =
            before_ ? contentOf(*before_, commandsBefore, tile) : TileContent{};
        // Along a straight edge there is nothing to be told apart.
        const bool wide = tile.width > tileSize && !(now.inRows && then.inRows);
        const bool high = tile.height > tileSize && !(now.inColumns && then.inColumns);
        if ((wide || high) && !(now.even() && then.even())) {
            const bool across = wide && (!high || tile.width > tile.height);
            const auto [first, second] = halves(tile, across);
            divide(first, areasHere, now.touching, then.touching);
            divide(second, areasHere, now.touching, then.touching);
        } else if (!now.even()) {
            addUneven(tile, now);
        } else if (before_ && then.even() && sameColor(now, then)) {
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
            const IntPoint sample = areas.front().origin();
            merge(areas);
            plan_.uniform.push_back({sample, std::move(areas)});
        }
        for (auto& [stripes, areas] : striped_) {
            IntRect sample = areas.front();
            (stripes.upright ? sample.height : sample.width) = 1;
            merge(areas);
            plan_.striped.push_back({sample, stripes.upright, std::move(areas)});
        }
        return std::move(plan_);
    }

private:
    /// What makes stripes the same in several tiles.
    struct Stripes {
        bool upright;
        int start;  ///< of the columns or rows
        int length; ///< likewise
        std::vector<std::size_t> commands;

        friend bool operator<(const Stripes& a, const Stripes& b) {
            return std::tie(a.upright, a.start, a.length, a.commands) <
                   std::tie(b.upright, b.start, b.length, b.commands);
        }
    };

    void addUneven(const IntRect& tile, const TileContent& content) {
        if (content.inColumns) {
            striped_[{true, tile.x, tile.width, content.touching}].push_back(tile);
        } else if (content.inRows) {
            striped_[{false, tile.y, tile.height, content.touching}].push_back(tile);
        } else {
            plan_.rasterized.push_back(tile);
        }
    }

    /// Only fills touch a tile evenly.
    [[nodiscard]] bool sameColor(const TileContent& now, const TileContent& then) const {
        const auto color = [](const Drawing& drawing, std::size_t index) {
            return std::get<FillRoundedRect>(drawing.list[index]).color;
        };
        return std::ranges::equal(now.touching, then.touching, [&](std::size_t a, std::size_t b) {
            return color(now_, a) == color(*before_, b);
        });
    }

    /// @param across into a left and a right one
    static std::pair<IntRect, IntRect> halves(const IntRect& tile, bool across) {
        const auto half = [](int length) {
            return std::max((length + tileSize) / (2 * tileSize) * tileSize, tileSize);
        };
        IntRect first = tile;
        IntRect second = tile;
        if (across) {
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

    Drawing now_;
    std::optional<Drawing> before_;
    TilePlan plan_;
    /// By the commands that make up the colour.
    std::map<std::vector<std::size_t>, std::vector<IntRect>> uniform_;
    std::map<Stripes, std::vector<IntRect>> striped_;
};

/// @param rect within the view
IntRect onTiles(const Rect& rect) {
    const auto down = [](double place) {
        return static_cast<int>(std::floor(place / tileSize)) * tileSize;
    };
    const auto up = [](double place) {
        return static_cast<int>(std::ceil(place / tileSize)) * tileSize;
    };
    return IntRect::between({down(rect.minX()), down(rect.minY())}, up(rect.maxX()),
                            up(rect.maxY()));
}

} // namespace

std::vector<IntRect> TilePlan::all() const {
    std::vector<IntRect> pieces = cleared;
    const auto add = [&pieces](const std::vector<IntRect>& areas) {
        pieces.insert(pieces.end(), areas.begin(), areas.end());
    };
    for (const Uniform& one : uniform) {
        add(one.areas);
    }
    for (const Striped& one : striped) {
        add(one.areas);
    }
    add(rasterized);
    return pieces;
}

TilePlan planTiles(const DisplayList& list, std::span<const Rect> areas, IntSize view,
                   const DisplayList* before) {
    const IntRect whole = {0, 0, view.width, view.height};
    Rect bounds = Rect::null();
    for (const Rect& area : areas) {
        bounds = unite(bounds, intersect(area, toRect(whole)));
    }
    Planner planner(list, before);
    if (!bounds.isNull()) {
        planner.divide(intersect(onTiles(bounds), whole), areas, allOf(list),
                       before ? allOf(*before) : std::vector<std::size_t>{});
    }
    return planner.take();
}

bool covers(std::span<const IntRect> pieces, const IntRect& rect) {
    std::vector<IntRect> left = {rect};
    for (const IntRect& piece : pieces) {
        std::vector<IntRect> next;
        for (const IntRect& one : left) {
            const IntRect shared = intersect(one, piece);
            if (shared.isEmpty()) {
                next.push_back(one);
                continue;
            }
            const auto endX = static_cast<std::int32_t>(shared.endX());
            const auto endY = static_cast<std::int32_t>(shared.endY());
            const std::array<IntRect, 4> around = {
                IntRect::between(one.origin(), one.endX(), shared.y),
                IntRect::between({one.x, endY}, one.endX(), one.endY()),
                IntRect::between({one.x, shared.y}, shared.x, endY),
                IntRect::between({endX, shared.y}, one.endX(), endY)};
            std::ranges::copy_if(around, std::back_inserter(next),
                                 [](const IntRect& part) { return !part.isEmpty(); });
        }
        left = std::move(next);
    }
    return left.empty();
}

} // namespace lumetry
