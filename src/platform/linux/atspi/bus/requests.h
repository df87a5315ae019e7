#pragma once

#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/bus/object_reference.h"

#include <atspi/atspi.h>

#include <cstdint>
#include <string>

namespace lumetry::atspi {

/// @{ The requests that are put to accessible objects. Places and points are in the application's
/// own units, from the origin that the coordinates name.
[[nodiscard]] Message getInterfaces(const ObjectReference& object);
[[nodiscard]] Message getRole(const ObjectReference& object);
[[nodiscard]] Message getName(const ObjectReference& object);
[[nodiscard]] Message getParent(const ObjectReference& object);
[[nodiscard]] Message getChildren(const ObjectReference& object);
[[nodiscard]] Message getAttributes(const ObjectReference& object);
[[nodiscard]] Message getState(const ObjectReference& object);
[[nodiscard]] Message getExtents(const ObjectReference& object, AtspiCoordType coordinates);
[[nodiscard]] Message getAccessibleAtPoint(const ObjectReference& object, std::int32_t x,
                                           std::int32_t y, AtspiCoordType coordinates);
[[nodiscard]] Message getText(const ObjectReference& object, std::int32_t start, std::int32_t end);
/// Around the characters from start to before end.
[[nodiscard]] Message getRangeExtents(const ObjectReference& object, std::int32_t start,
                                      std::int32_t end, AtspiCoordType coordinates);
/// How the run of text around a character is set, including what holds for the whole text.
[[nodiscard]] Message getAttributeRun(const ObjectReference& object, std::int32_t offset);
[[nodiscard]] Message getCharacterCount(const ObjectReference& object);
[[nodiscard]] Message getCurrentValue(const ObjectReference& object);
[[nodiscard]] Message getIndexInParent(const ObjectReference& object);
[[nodiscard]] Message getRowCount(const ObjectReference& table);
[[nodiscard]] Message getColumnCount(const ObjectReference& table);
/// Where a cell is; the index is its number among the table's children.
[[nodiscard]] Message getRowAtIndex(const ObjectReference& table, std::int32_t index);
[[nodiscard]] Message getColumnAtIndex(const ObjectReference& table, std::int32_t index);
[[nodiscard]] Message getCell(const ObjectReference& table, std::int32_t row, std::int32_t column);
/// Which toolkit an application is built with; asked of its root.
[[nodiscard]] Message getToolkitName(const ObjectReference& root);
/// @}

/// The root whose children are the applications on the bus.
[[nodiscard]] const ObjectReference& registryRoot();
/// Which process a connection of the bus belongs to; asked of the bus itself.
[[nodiscard]] Message getConnectionUnixProcessID(const std::string& name);

/// @{ Requests on any bus.
[[nodiscard]] Message methodCall(const ObjectReference& object, const char* interface,
                                 const char* method);
[[nodiscard]] Message getProperty(const ObjectReference& object, const char* interface,
                                  const char* property);
[[nodiscard]] Message setProperty(const ObjectReference& object, const char* interface,
                                  const char* property, bool truth);
/// @}

} // namespace lumetry::atspi
