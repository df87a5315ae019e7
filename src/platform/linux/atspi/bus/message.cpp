#include "platform/linux/atspi/bus/message.h"

#include "base/text.h"

#include <array>
#include <limits>
#include <string_view>
#include <utility>

namespace lumetry::atspi {
namespace {

constexpr std::string_view nullPath = "/org/a11y/atspi/null";

/// A cursor on the first value of a reply, inside its variant if it is in one.
class Values {
public:
    explicit Values(const Reply& reply) {
        if (reply.outcome != Outcome::answered || !reply.message ||
            dbus_message_iter_init(reply.message.get(), &iterator_) == FALSE) {
            return;
        }
        some_ = true;
        if (type() == DBUS_TYPE_VARIANT) {
            *this = inside();
        }
    }

    [[nodiscard]] int type() {
        return some_ ? dbus_message_iter_get_arg_type(&iterator_) : DBUS_TYPE_INVALID;
    }

    /// Only for a container.
    [[nodiscard]] Values inside() {
        Values values;
        dbus_message_iter_recurse(&iterator_, &values.iterator_);
        values.some_ = true;
        return values;
    }

    void next() { some_ = some_ && dbus_message_iter_next(&iterator_) != FALSE; }

    [[nodiscard]] std::optional<std::int64_t> integer() {
        switch (type()) {
        case DBUS_TYPE_INT16:
            return basic<dbus_int16_t>();
        case DBUS_TYPE_UINT16:
            return basic<dbus_uint16_t>();
        case DBUS_TYPE_INT32:
            return basic<dbus_int32_t>();
        case DBUS_TYPE_UINT32:
            return basic<dbus_uint32_t>();
        case DBUS_TYPE_INT64:
            return basic<dbus_int64_t>();
        case DBUS_TYPE_BYTE:
            return basic<unsigned char>();
        default:
            return std::nullopt;
        }
    }

    [[nodiscard]] std::optional<double> number() {
        if (type() == DBUS_TYPE_DOUBLE) {
            return basic<double>();
        }
        const auto whole = integer();
        return whole ? std::optional(static_cast<double>(*whole)) : std::nullopt;
    }

    [[nodiscard]] std::optional<std::string> text() {
        if (type() != DBUS_TYPE_STRING && type() != DBUS_TYPE_OBJECT_PATH) {
            return std::nullopt;
        }
        return validUtf8(basic<const char*>());
    }

    [[nodiscard]] std::optional<bool> boolean() {
        if (type() != DBUS_TYPE_BOOLEAN) {
            return std::nullopt;
        }
        return basic<dbus_bool_t>() != 0;
    }

    [[nodiscard]] std::optional<ObjectReference> reference() {
        if (type() != DBUS_TYPE_STRUCT) {
            return std::nullopt;
        }
        Values fields = inside();
        auto name = fields.text();
        fields.next();
        auto path = fields.text();
        if (!name || !path || name->empty() || *path == nullPath) {
            return std::nullopt;
        }
        return ObjectReference{std::move(*name), std::move(*path)};
    }

private:
    Values() = default;

    template<typename Basic>
    [[nodiscard]] Basic basic() {
        Basic value{};
        dbus_message_iter_get_basic(&iterator_, &value);
        return value;
    }

    DBusMessageIter iterator_ = DBUS_MESSAGE_ITER_INIT_CLOSED;
    bool some_ = false;
};

std::optional<std::vector<ObjectReference>> referencesIn(Values list) {
    if (list.type() != DBUS_TYPE_ARRAY) {
        return std::nullopt;
    }
    std::vector<ObjectReference> references;
    Values item = list.inside();
    for (; item.type() == DBUS_TYPE_STRUCT; item.next()) {
        if (auto reference = item.reference()) {
            references.push_back(std::move(*reference));
        }
    }
    if (item.type() != DBUS_TYPE_INVALID) {
        return std::nullopt;
    }
    return references;
}

} // namespace

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
    return methodCall(object, DBUS_INTERFACE_PROPERTIES, "Get", interface, property);
}

Message setProperty(const ObjectReference& object, const char* interface, const char* property,
                    bool truth) {
    Message message = methodCall(object, DBUS_INTERFACE_PROPERTIES, "Set", interface, property);
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

Message getConnectionUnixProcessID(const std::string& name) {
    return methodCall({DBUS_SERVICE_DBUS, DBUS_PATH_DBUS}, DBUS_INTERFACE_DBUS,
                      "GetConnectionUnixProcessID", name.c_str());
}

bool isSomewhere(const IntRect& extents) {
    constexpr std::int32_t nowhere = std::numeric_limits<std::int32_t>::min();
    return !extents.isEmpty() && extents.x != nowhere && extents.y != nowhere;
}

std::optional<std::string> textOf(const Reply& reply) {
    return Values(reply).text();
}

std::optional<std::int64_t> integerOf(const Reply& reply) {
    return Values(reply).integer();
}

std::optional<double> numberOf(const Reply& reply) {
    return Values(reply).number();
}

std::optional<bool> booleanOf(const Reply& reply) {
    return Values(reply).boolean();
}

std::optional<ObjectReference> referenceOf(const Reply& reply) {
    return Values(reply).reference();
}

std::optional<std::vector<ObjectReference>> referencesOf(const Reply& reply) {
    return referencesIn(Values(reply));
}

std::optional<std::vector<ObjectReference>> labelsOf(const Reply& reply) {
    Values values(reply);
    if (values.type() != DBUS_TYPE_ARRAY) {
        return std::nullopt;
    }
    for (Values relation = values.inside(); relation.type() == DBUS_TYPE_STRUCT; relation.next()) {
        Values field = relation.inside();
        if (field.integer() == ATSPI_RELATION_LABELLED_BY) {
            field.next();
            return referencesIn(field);
        }
    }
    return std::vector<ObjectReference>();
}

std::optional<IntRect> extentsOf(const Reply& reply) {
    Values values(reply);
    Values field = values.type() == DBUS_TYPE_STRUCT ? values.inside() : values;
    std::array<std::int32_t, 4> numbers{};
    for (std::int32_t& number : numbers) {
        const auto value = field.integer();
        if (!value) {
            return std::nullopt;
        }
        number = static_cast<std::int32_t>(*value);
        field.next();
    }
    return IntRect{numbers[0], numbers[1], numbers[2], numbers[3]};
}

std::optional<TextAttributes> attributesOf(const Reply& reply) {
    Values values(reply);
    if (values.type() != DBUS_TYPE_ARRAY) {
        return std::nullopt;
    }
    TextAttributes attributes;
    for (Values entry = values.inside(); entry.type() == DBUS_TYPE_DICT_ENTRY; entry.next()) {
        Values field = entry.inside();
        auto name = field.text();
        field.next();
        auto value = field.text();
        if (name && value) {
            attributes.insert_or_assign(std::move(*name), std::move(*value));
        }
    }
    return attributes;
}

std::optional<Interfaces> interfacesOf(const Reply& reply) {
    constexpr std::array<std::pair<std::string_view, Interface>, 5> names = {
        {{"org.a11y.atspi.Component", Interface::component},
         {"org.a11y.atspi.EditableText", Interface::editableText},
         {"org.a11y.atspi.Table", Interface::table},
         {"org.a11y.atspi.Text", Interface::text},
         {"org.a11y.atspi.Value", Interface::value}}};
    Values values(reply);
    if (values.type() != DBUS_TYPE_ARRAY) {
        return std::nullopt;
    }
    Interfaces interfaces;
    for (Values item = values.inside(); item.type() == DBUS_TYPE_STRING; item.next()) {
        const auto name = item.text();
        for (const auto& [known, interface] : names) {
            if (name == known) {
                interfaces.insert(interface);
            }
        }
    }
    return interfaces;
}

std::optional<std::uint64_t> statesOf(const Reply& reply) {
    constexpr unsigned bitsPerWord = 32;
    Values values(reply);
    if (values.type() != DBUS_TYPE_ARRAY) {
        return std::nullopt;
    }
    std::uint64_t states = 0;
    Values word = values.inside();
    for (unsigned shift = 0; shift < 2 * bitsPerWord; shift += bitsPerWord, word.next()) {
        const auto bits = word.integer();
        if (!bits) {
            return std::nullopt;
        }
        states |= static_cast<std::uint64_t>(static_cast<std::uint32_t>(*bits)) << shift;
    }
    return states;
}

} // namespace lumetry::atspi
