#pragma once

#include <string>
#include <tuple>

namespace lumetry::atspi {

/// Where one accessible object lives on the accessibility bus.
struct ObjectReference {
    std::string name; ///< unique name of its application's connection
    std::string path; ///< of the object within the application

    friend bool operator==(const ObjectReference&, const ObjectReference&) = default;
    friend bool operator<(const ObjectReference& a, const ObjectReference& b) {
        return std::tie(a.name, a.path) < std::tie(b.name, b.path);
    }
};

} // namespace lumetry::atspi
