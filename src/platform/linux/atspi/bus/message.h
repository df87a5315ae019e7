#pragma once

#include "base/int_geometry.h"

#include <atspi/atspi-constants.h>
#include <dbus/dbus.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace lumetry::atspi {

/// Where one accessible object lives on the accessibility bus.
struct ObjectReference {
    std::string name; ///< unique name of its application's connection
    std::string path; ///< of the object within the application

    friend bool operator==(const ObjectReference&, const ObjectReference&) = default;
    friend bool operator<(const ObjectReference& a, const ObjectReference& b) {
        return std::tie(a.path, a.name) < std::tie(b.path, b.name);
    }
};

struct UnrefMessage {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
/// A message of the bus, on its way there or back.
using Message = std::unique_ptr<DBusMessage, UnrefMessage>;

/// How an exchange with another process ended.
enum class Outcome {
    answered,
    refused, ///< the answer is an error
    gone,    ///< nobody has that name any more
    silent,  ///< no answer in time, or no bus
};

struct Reply {
    Outcome outcome = Outcome::silent;
    std::shared_ptr<DBusMessage> message; ///< only of an answer
};

/// @{ Adds an argument to a request.
void append(DBusMessage& message, std::int32_t number);
void append(DBusMessage& message, std::uint32_t number);
void append(DBusMessage& message, const char* string);
void append(DBusMessage& message, bool truth);
/// @}

/// @{ Requests on any bus. Null where the object's name or path cannot be one.
[[nodiscard]] Message methodCall(const ObjectReference& object, const char* interface,
                                 const char* method);
template<typename... Arguments>
[[nodiscard]] Message methodCall(const ObjectReference& object, const char* interface,
                                 const char* method, Arguments... arguments) {
    Message message = methodCall(object, interface, method);
    if (message) {
        (append(*message, arguments), ...);
    }
    return message;
}
[[nodiscard]] Message getProperty(const ObjectReference& object, const char* interface,
                                  const char* property);
[[nodiscard]] Message setProperty(const ObjectReference& object, const char* interface,
                                  const char* property, bool truth);
/// Which process a connection of the bus belongs to; asked of the bus itself.
[[nodiscard]] Message getConnectionUnixProcessID(const std::string& name);
/// @}

/// How a run of text is set, as applications tell it: names to values, such as "family-name" to
/// "Inter", "size" to "10.5pt", "weight" to "700" and "fg-color" to "30,144,255".
using TextAttributes = std::map<std::string, std::string, std::less<>>;

/// What an object can be asked besides what all objects can.
enum class Interface : std::uint8_t { component, editableText, table, text, value };

struct Interfaces {
    std::uint8_t bits = 0;

    void insert(Interface interface) { bits |= bit(interface); }
    [[nodiscard]] bool contains(Interface interface) const { return (bits & bit(interface)) != 0; }

private:
    static constexpr std::uint8_t bit(Interface interface) {
        return static_cast<std::uint8_t>(1U << static_cast<unsigned>(interface));
    }
};

/// @{ What a reply carries. Absent when there is none or it is of another type; texts are made
/// well-formed UTF-8; a variant is looked into.
[[nodiscard]] std::optional<std::string> textOf(const Reply& reply);
[[nodiscard]] std::optional<std::int64_t> integerOf(const Reply& reply);
[[nodiscard]] std::optional<double> numberOf(const Reply& reply);
[[nodiscard]] std::optional<bool> booleanOf(const Reply& reply);
/// A reference to nothing counts as absent.
[[nodiscard]] std::optional<ObjectReference> referenceOf(const Reply& reply);
/// References to nothing are left out.
[[nodiscard]] std::optional<std::vector<ObjectReference>> referencesOf(const Reply& reply);
/// Of an object's relations to others, those that label it.
[[nodiscard]] std::optional<std::vector<ObjectReference>> labelsOf(const Reply& reply);
/// A place in the application's own units; as one structure or as four numbers.
[[nodiscard]] std::optional<IntRect> extentsOf(const Reply& reply);
/// Names to values, of which the last one of a name counts.
[[nodiscard]] std::optional<TextAttributes> attributesOf(const Reply& reply);
[[nodiscard]] std::optional<Interfaces> interfacesOf(const Reply& reply);
/// The bits of an object's states.
[[nodiscard]] std::optional<std::uint64_t> statesOf(const Reply& reply);
/// @}

/// Whether that is a place: what is not shown has no size, or is as far away as numbers go.
[[nodiscard]] bool isSomewhere(const IntRect& extents);

/// @param states the bits of an object's states
[[nodiscard]] constexpr bool hasState(std::uint64_t states, AtspiStateType state) {
    return ((states >> static_cast<unsigned>(state)) & 1U) != 0;
}

} // namespace lumetry::atspi
