#include "platform/linux/atspi/tree/tables.h"

#include <atspi/atspi.h>

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
    Extents place;
};

/// A table's number of rows or columns, of those that can be asked about; absent where it makes no
/// sense.
std::optional<std::int32_t> countOf(const Reply& reply) {
    const auto count = integerOf(reply);
    if (!count || *count < 0) {
        return std::nullopt;
    }
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(*count, most));
}

bool meet(const Extents& a, const Extents& b) {
    const auto overlap = [](std::int64_t start, std::int64_t length, std::int64_t otherStart,
                            std::int64_t otherLength) {
        return start < otherStart + otherLength && otherStart < start + length;
    };
    return overlap(a.x, a.width, b.x, b.width) && overlap(a.y, a.height, b.y, b.height);
}

Extents around(const Extents& a, const Extents& b) {
    const std::int64_t left = std::min(a.x, b.x);
    const std::int64_t top = std::min(a.y, b.y);
    const std::int64_t right = std::max(std::int64_t{a.x} + a.width, std::int64_t{b.x} + b.width);
    const std::int64_t bottom =
        std::max(std::int64_t{a.y} + a.height, std::int64_t{b.y} + b.height);
    constexpr std::int64_t longest = std::numeric_limits<std::int32_t>::max();
    return {static_cast<std::int32_t>(left), static_cast<std::int32_t>(top),
            static_cast<std::int32_t>(std::min(right - left, longest)),
            static_cast<std::int32_t>(std::min(bottom - top, longest))};
}

/// The point in an object at those shares of its width and height.
Asked objectIn(const ObjectReference& table, const Extents& place, double across, double down) {
    const auto at = [](std::int32_t start, std::int32_t length, double share) {
        constexpr double farthest = 1 << 30;
        return static_cast<std::int32_t>(std::clamp(start + length * share, -farthest, farthest));
    };
    return {table, Question::objectAtPoint, at(place.x, place.width, across),
            at(place.y, place.height, down)};
}

/// Some cell in the middle of the table: of a long one those to be seen are nearby.
std::optional<Landmark> landmarkIn(ReplyCache& cache, const ObjectReference& table,
                                   const Extents& place, Deadline deadline) {
    constexpr double middle = 0.5;
    constexpr double nearTheStart = 0.125;
    const auto found = cache.ask(std::array{objectIn(table, place, nearTheStart, middle),
                                            objectIn(table, place, middle, middle)},
                                 deadline);
    for (const Reply& reply : found) {
        const auto cell = referenceOf(reply);
        if (!cell || *cell == table) {
            continue;
        }
        const auto about = cache.ask(
            std::array{Asked{*cell, Question::indexInParent}, Asked{*cell, Question::extents}},
            deadline);
        const auto extents = extentsOf(about[1]);
        const std::int32_t index = countOf(about[0]).value_or(0);
        const auto position = cache.ask(std::array{Asked{table, Question::rowAtIndex, index},
                                                   Asked{table, Question::columnAtIndex, index}},
                                        deadline);
        const auto row = countOf(position[0]);
        if (row && extents && extents->isSomewhere() && meet(*extents, place)) {
            return Landmark{*row, countOf(position[1]).value_or(0), *extents};
        }
    }
    return std::nullopt;
}

/// What is worth asking about of a table with more rows than that.
Part partAround(const Landmark& landmark, const Extents& table, std::int32_t rows) {
    const std::int64_t height = std::max(landmark.place.height, 1);
    const std::int64_t above =
        std::max<std::int64_t>(std::int64_t{landmark.place.y} - table.y, 0) / height + 1;
    const std::int64_t below =
        std::max<std::int64_t>(std::int64_t{table.y} + table.height - landmark.place.y, 0) / height;
    const std::int64_t first = std::max<std::int64_t>(landmark.row - above, 0);
    const std::int64_t last = std::min<std::int64_t>(landmark.row + below, rows - 1);
    return {first, last, {landmark.column}};
}

std::vector<TableRow> rowsIn(ReplyCache& cache, const ObjectReference& table, const Part& part,
                             const std::optional<Extents>& place, Deadline deadline) {
    std::vector<Asked> cells;
    for (std::int64_t row = part.firstRow; row <= part.lastRow; ++row) {
        for (const std::int32_t column : part.columns) {
            cells.push_back({table, Question::cell, static_cast<std::int32_t>(row), column});
        }
    }
    const auto found = cache.ask(cells, deadline);
    std::vector<Asked> places;
    std::vector<std::int32_t> rowsOfPlaces;
    for (std::size_t index = 0; index < cells.size(); ++index) {
        if (auto cell = referenceOf(found[index])) {
            places.push_back({std::move(*cell), Question::extents});
            rowsOfPlaces.push_back(cells[index].first);
        }
    }
    const auto told = cache.ask(places, deadline);
    std::vector<TableRow> rows;
    for (std::size_t index = 0; index < places.size(); ++index) {
        const auto cell = extentsOf(told[index]);
        if (!cell || !cell->isSomewhere() || (place && !meet(*cell, *place))) {
            continue;
        }
        if (!rows.empty() && rows.back().row == rowsOfPlaces[index]) {
            rows.back().place = around(rows.back().place, *cell);
        } else {
            rows.push_back({rowsOfPlaces[index], *cell});
        }
    }
    return rows;
}

} // namespace

bool isMadeOfCells(const Reply& role, const Reply& interfaces, const Habits& habits) {
    constexpr std::array tables = {ATSPI_ROLE_TABLE, ATSPI_ROLE_TREE, ATSPI_ROLE_TREE_TABLE};
    return habits.tablesHoldCells &&
           interfacesOf(interfaces).value_or(Interfaces()).contains(Interface::table) &&
           std::ranges::find(tables, integerOf(role)) != tables.end();
}

std::optional<std::vector<TableRow>> rowsSeenOf(ReplyCache& cache, const ObjectReference& table,
                                                Deadline deadline) {
    const auto about =
        cache.ask(std::array{Asked{table, Question::rowCount}, Asked{table, Question::columnCount},
                             Asked{table, Question::extents}},
                  deadline);
    const auto rows = countOf(about[0]);
    const auto columns = countOf(about[1]);
    if (!rows || !columns) {
        return std::nullopt;
    }
    if (*rows == 0 || *columns == 0) {
        return std::vector<TableRow>();
    }
    auto place = extentsOf(about[2]);
    if (place && !place->isSomewhere()) {
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
    const auto columns = countOf(cache.ask({table, Question::columnCount}, deadline)).value_or(0);
    const std::int32_t count = std::min(columns, mostColumns);
    std::vector<Asked> asked;
    asked.reserve(static_cast<std::size_t>(count));
    for (std::int32_t column = 0; column < count; ++column) {
        asked.push_back({table, Question::cell, row, column});
    }
    std::vector<ObjectReference> cells;
    for (const Reply& reply : cache.ask(asked, deadline)) {
        if (auto cell = referenceOf(reply)) {
            cells.push_back(std::move(*cell));
        }
    }
    return cells;
}

} // namespace lumetry::atspi
