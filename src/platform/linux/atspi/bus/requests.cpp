#include "platform/linux/atspi/bus/requests.h"

namespace lumetry::atspi {
namespace {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* component = "org.a11y.atspi.Component";
constexpr const char* tableInterface = "org.a11y.atspi.Table";
constexpr const char* text = "org.a11y.atspi.Text";
constexpr const char* value = "org.a11y.atspi.Value";
constexpr const char* application = "org.a11y.atspi.Application";

void append(DBusMessage& message, std::int32_t number) {
    dbus_message_append_args(&message, DBUS_TYPE_INT32, &number, DBUS_TYPE_INVALID);
}

void append(DBusMessage& message, std::uint32_t number) {
    dbus_message_append_args(&message, DBUS_TYPE_UINT32, &number, DBUS_TYPE_INVALID);
}

void append(DBusMessage& message, const char* string) {
    dbus_message_append_args(&message, DBUS_TYPE_STRING, &string, DBUS_TYPE_INVALID);
}

void append(DBusMessage& message, bool truth) {
    const dbus_bool_t boolean = truth ? TRUE : FALSE;
    dbus_message_append_args(&message, DBUS_TYPE_BOOLEAN, &boolean, DBUS_TYPE_INVALID);
}

template<typename... Arguments>
Message methodCallWith(const ObjectReference& object, const char* interface, const char* method,
                       Arguments... arguments) {
    Message message = methodCall(object, interface, method);
    if (message) {
        (append(*message, arguments), ...);
    }
    return message;
}

} // namespace

Message methodCall(const ObjectReference& object, const char* interface, const char* method) {
    // Names come from other processes; libdbus ends the program over one that is malformed.
    if (dbus_validate_bus_name(object.name.c_str(), nullptr) == FALSE ||
        dbus_validate_path(object.path.c_str(), nullptr) == FALSE) {
        return nullptr;
    }
    return Message(
        dbus_message_new_method_call(object.name.c_str(), object.path.c_str(), interface, method));
}

Message getProperty(const ObjectReference& object, const char* interface, const char* property) {
    return methodCallWith(object, DBUS_INTERFACE_PROPERTIES, "Get", interface, property);
}

Message setProperty(const ObjectReference& object, const char* interface, const char* property,
                    bool truth) {
    Message message = methodCallWith(object, DBUS_INTERFACE_PROPERTIES, "Set", interface, property);
    if (message) {
        DBusMessageIter arguments;
        DBusMessageIter variant;
        const dbus_bool_t boolean = truth ? TRUE : FALSE;
        dbus_message_iter_init_append(message.get(), &arguments);
        dbus_message_iter_open_container(&arguments, DBUS_TYPE_VARIANT, DBUS_TYPE_BOOLEAN_AS_STRING,
                                         &variant);
        dbus_message_iter_append_basic(&variant, DBUS_TYPE_BOOLEAN, &boolean);
        dbus_message_iter_close_container(&arguments, &variant);
    }
    return message;
}

Message getInterfaces(const ObjectReference& object) {
    return methodCall(object, accessible, "GetInterfaces");
}

Message getRole(const ObjectReference& object) {
    return methodCall(object, accessible, "GetRole");
}

Message getName(const ObjectReference& object) {
    return getProperty(object, accessible, "Name");
}

Message getParent(const ObjectReference& object) {
    return getProperty(object, accessible, "Parent");
}

Message getChildren(const ObjectReference& object) {
    return methodCall(object, accessible, "GetChildren");
}

Message getAttributes(const ObjectReference& object) {
    return methodCall(object, accessible, "GetAttributes");
}

Message getState(const ObjectReference& object) {
    return methodCall(object, accessible, "GetState");
}

Message getExtents(const ObjectReference& object, AtspiCoordType coordinates) {
    return methodCallWith(object, component, "GetExtents", static_cast<std::uint32_t>(coordinates));
}

Message getAccessibleAtPoint(const ObjectReference& object, std::int32_t x, std::int32_t y,
                             AtspiCoordType coordinates) {
    return methodCallWith(object, component, "GetAccessibleAtPoint", x, y,
                          static_cast<std::uint32_t>(coordinates));
}

Message getText(const ObjectReference& object, std::int32_t start, std::int32_t end) {
    return methodCallWith(object, text, "GetText", start, end);
}

Message getRangeExtents(const ObjectReference& object, std::int32_t start, std::int32_t end,
                        AtspiCoordType coordinates) {
    return methodCallWith(object, text, "GetRangeExtents", start, end,
                          static_cast<std::uint32_t>(coordinates));
}

Message getAttributeRun(const ObjectReference& object, std::int32_t offset) {
    constexpr bool includeDefaults = true;
    return methodCallWith(object, text, "GetAttributeRun", offset, includeDefaults);
}

Message getCharacterCount(const ObjectReference& object) {
    return getProperty(object, text, "CharacterCount");
}

Message getCurrentValue(const ObjectReference& object) {
    return getProperty(object, value, "CurrentValue");
}

Message getIndexInParent(const ObjectReference& object) {
    return methodCall(object, accessible, "GetIndexInParent");
}

Message getRowCount(const ObjectReference& table) {
    return getProperty(table, tableInterface, "NRows");
}

Message getColumnCount(const ObjectReference& table) {
    return getProperty(table, tableInterface, "NColumns");
}

Message getRowAtIndex(const ObjectReference& table, std::int32_t index) {
    return methodCallWith(table, tableInterface, "GetRowAtIndex", index);
}

Message getColumnAtIndex(const ObjectReference& table, std::int32_t index) {
    return methodCallWith(table, tableInterface, "GetColumnAtIndex", index);
}

Message getCell(const ObjectReference& table, std::int32_t row, std::int32_t column) {
    return methodCallWith(table, tableInterface, "GetAccessibleAt", row, column);
}

Message getToolkitName(const ObjectReference& root) {
    return getProperty(root, application, "ToolkitName");
}

const ObjectReference& registryRoot() {
    static const ObjectReference root{ATSPI_DBUS_NAME_REGISTRY, ATSPI_DBUS_PATH_ROOT};
    return root;
}

Message getConnectionUnixProcessID(const std::string& name) {
    return methodCallWith({DBUS_SERVICE_DBUS, DBUS_PATH_DBUS}, DBUS_INTERFACE_DBUS,
                          "GetConnectionUnixProcessID", name.c_str());
}

} // namespace lumetry::atspi
