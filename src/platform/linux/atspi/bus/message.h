#pragma once

#include "platform/linux/atspi/bus/object_reference.h"

#include <dbus/dbus.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::atspi {

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

/// A place on the screen in its application's units, y downwards.
struct Extents {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;

    [[nodiscard]] bool contains(std::int32_t pointX, std::int32_t pointY) const;
    /// Whether it is one: what is not shown has no size, or is as far away as numbers go.
    [[nodiscard]] bool isSomewhere() const;
};

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
/// As one structure or as four numbers.
[[nodiscard]] std::optional<Extents> extentsOf(const Reply& reply);
/// Names to values, of which the last one of a name counts.
[[nodiscard]] std::optional<TextAttributes> attributesOf(const Reply& reply);
[[nodiscard]] std::optional<Interfaces> interfacesOf(const Reply& reply);
/// The bits of an object's states.
[[nodiscard]] std::optional<std::uint64_t> statesOf(const Reply& reply);
/// @}

} // namespace lumetry::atspi
