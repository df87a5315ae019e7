#include "platform/linux/atspi/tree/tables.h"

#include <atspi/atspi-constants.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <limits>
#include <set>
#include <utility>

namespace lumetry::atspi {
namespace {

/// As many as a list's items are measured.
constexpr std::int64_t mostRows = 60;
/// The first and the last of each row.
constexpr std::int64_t mostCells = 2 * mostRows;

/// Rows by their numbers, and the columns by whose cells they are placed.
struct Part {
    std::int64_t firstRow = 0;
    std::int64_t lastRow = -1;
    std::set<std::int32_t> columns;
};

/// A cell that is to be seen.
struct Landmark {
    std::int64_t row = 0;
    std::int32_t column = 0;
    IntRect place;
};

/// A number of rows or columns, or the number of one, as far as it can be asked about; absent where
/// it makes no sense.
std::optional<std::int32_t> usable(std::optional<std::int64_t> number) {
    if (!number || *number < 0) {
        return std::nullopt;
    }
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(*number, most));
}

bool meet(const IntRect& a, const IntRect& b) {
    return a.x < b.endX() && b.x < a.endX() && a.y < b.endY() && b.y < a.endY();
}

/// The point in an object at those shares of its width and height.
Query objectIn(const ObjectReference& table, const IntRect& place, double across, double down) {
    const auto at = [](std::int32_t start, std::int32_t length, double share) {
        constexpr double farthest = 1 << 30;
        return static_cast<std::int32_t>(std::clamp(start + length * share, -farthest, farthest));
    };
    return {table, Question::objectAtPoint, at(place.x, place.width, across),
            at(place.y, place.height, down)};
}

/// Some cell in the middle of the table: of a long one those to be seen are nearby.
std::optional<Landmark> landmarkIn(ReplyCache& cache, const ObjectReference& table,
                                   const IntRect& place, Deadline deadline) {
    constexpr double middle = 0.5;
    constexpr double nearTheStart = 0.125;
    const std::array points = {objectIn(table, place, nearTheStart, middle),
                               objectIn(table, place, middle, middle)};
    cache.ask(points, deadline);
    for (const Query& point : points) {
        const auto cell = cache.get<Question::objectAtPoint>(table, point.first, point.second);
        if (!cell || *cell == table) {
            continue;
        }
        cache.ask({{*cell, Question::indexInParent}, {*cell, Question::extents}}, deadline);
        const auto index = usable(cache.get<Question::indexInParent>(*cell)).value_or(0);
        cache.ask({{table, Question::rowAtIndex, index}, {table, Question::columnAtIndex, index}},
                  deadline);
        const auto row = usable(cache.get<Question::rowAtIndex>(table, index));
        const auto column = usable(cache.get<Question::columnAtIndex>(table, index));
        const auto extents = cache.get<Question::extents>(*cell);
        if (row && extents && isSomewhere(*extents) && meet(*extents, place)) {
            return Landmark{*row, column.value_or(0), *extents};
        }
    }
    return std::nullopt;
}

/// What is worth asking about of a table with more rows than that.
Part partAround(const Landmark& landmark, const IntRect& table, std::int32_t rows) {
    const std::int64_t height = std::max(landmark.place.height, 1);
    const std::int64_t above =
        std::max<std::int64_t>(std::int64_t{landmark.place.y} - table.y, 0) / height + 1;
    const std::int64_t below = std::max<std::int64_t>(table.endY() - landmark.place.y, 0) / height;
    const std::int64_t first = std::max<std::int64_t>(landmark.row - above, 0);
    const std::int64_t last = std::min<std::int64_t>(landmark.row + below, rows - 1);
    return {first, last, {landmark.column}};
}

std::vector<TableRow> rowsIn(ReplyCache& cache, const ObjectReference& table, const Part& part,
                             const std::optional<IntRect>& place, Deadline deadline) {
    std::vector<Query> cells;
    for (std::int64_t row = part.firstRow; row <= part.lastRow; ++row) {
        for (const std::int32_t column : part.columns) {
            cells.push_back({table, Question::cell, static_cast<std::int32_t>(row), column});
        }
    }
    cache.ask(cells, deadline);
    struct Cell {
        std::int32_t row;
        ObjectReference object;
    };
    std::vector<Cell> found;
    std::vector<Query> places;
    for (const Query& cell : cells) {
        if (const auto object = cache.get<Question::cell>(table, cell.first, cell.second)) {
            places.push_back({*object, Question::extents});
            found.push_back({cell.first, *object});
        }
    }
    cache.ask(places, deadline);
    std::vector<TableRow> rows;
    for (const auto& [row, object] : found) {
        const auto cell = cache.get<Question::extents>(object);
        if (!cell || !isSomewhere(*cell) || (place && !meet(*cell, *place))) {
            continue;
        }
        if (!rows.empty() && rows.back().row == row) {
            rows.back().place = unite(rows.back().place, *cell);
        } else {
            rows.push_back({row, *cell});
        }
    }
    return rows;
}

} // namespace

bool isMadeOfCells(const ReplyCache& cache, const ObjectReference& object, const Habits& habits) {
    constexpr std::array tables = {ATSPI_ROLE_TABLE, ATSPI_ROLE_TREE, ATSPI_ROLE_TREE_TABLE};
    return habits.tablesHoldCells &&
           cache.get<Question::interfaces>(object)
               .value_or(Interfaces())
               .contains(Interface::table) &&
           std::ranges::find(tables, cache.get<Question::role>(object)) != tables.end();
}

std::optional<std::vector<TableRow>> rowsSeenOf(ReplyCache& cache, const ObjectReference& table,
                                                Deadline deadline) {
    cache.ask(
        {{table, Question::rowCount}, {table, Question::columnCount}, {table, Question::extents}},
        deadline);
    const auto rows = usable(cache.get<Question::rowCount>(table));
    const auto columns = usable(cache.get<Question::columnCount>(table));
    if (!rows || !columns) {
        return std::nullopt;
    }
    if (*rows == 0 || *columns == 0) {
        return std::vector<TableRow>();
    }
    auto place = cache.get<Question::extents>(table);
    if (place && !isSomewhere(*place)) {
        place.reset();
    }
    Part part{0, std::min<std::int64_t>(*rows, mostRows) - 1, {}};
    const auto landmark =
        *rows > mostRows && place ? landmarkIn(cache, table, *place, deadline) : std::nullopt;
    if (landmark) {
        part = partAround(*landmark, *place, *rows);
    }
    part.columns.insert({0, *columns - 1});
    part.lastRow = std::min(part.lastRow, part.firstRow + mostCells / std::ssize(part.columns) - 1);
    return rowsIn(cache, table, part, place, deadline);
}

std::vector<ObjectReference> cellsOf(ReplyCache& cache, const ObjectReference& table,
                                     std::int32_t row, Deadline deadline) {
    constexpr std::int32_t mostColumns = 60;
    const auto columns = usable(cache.ask<Question::columnCount>(table, deadline)).value_or(0);
    const std::int32_t count = std::min(columns, mostColumns);
    std::vector<Query> queries;
    queries.reserve(static_cast<std::size_t>(count));
    for (std::int32_t column = 0; column < count; ++column) {
        queries.push_back({table, Question::cell, row, column});
    }
    cache.ask(queries, deadline);
    std::vector<ObjectReference> cells;
    for (const Query& query : queries) {
        if (auto cell = cache.get<Question::cell>(table, row, query.second)) {
            cells.push_back(std::move(*cell));
        }
    }
    return cells;
}

} // namespace lumetry::atspi
