#pragma once

#include "base/int_geometry.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/tree/reply_cache.h"
#include "platform/linux/atspi/tree/toolkits.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace lumetry::atspi {

/// Whether an object is known to be a table whose children are its cells.
[[nodiscard]] bool isMadeOfCells(const ReplyCache& cache, const ObjectReference& object,
                                 const Habits& habits);

/// A row of a table that has no object for it.
struct TableRow {
    std::int32_t row = 0; ///< its number in the table, from 0
    IntRect place;        ///< around its cells
};

/// The rows that are to be seen of a table that is made of cells, without its headers, and no more
/// of them than anything is measured by; absent where the table does not tell how many it has.
/// However long it is, only the cells of those rows are asked for.
[[nodiscard]] std::optional<std::vector<TableRow>>
rowsSeenOf(ReplyCache& cache, const ObjectReference& table, Deadline deadline);

/// The cells of one row.
[[nodiscard]] std::vector<ObjectReference> cellsOf(ReplyCache& cache, const ObjectReference& table,
                                                   std::int32_t row, Deadline deadline);

} // namespace lumetry::atspi
