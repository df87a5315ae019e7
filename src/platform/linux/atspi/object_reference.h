#pragma once

#include <compare>
#include <string>

namespace lumetry::atspi {

/// Where one accessible object lives on the accessibility bus.
struct ObjectReference {
    std::string name; ///< unique name of its application's connection
    std::string path; ///< of the object within the application

    friend auto operator<=>(const ObjectReference&, const ObjectReference&) = default;
    friend bool operator==(const ObjectReference&, const ObjectReference&) = default;
};

} // namespace lumetry::atspi
