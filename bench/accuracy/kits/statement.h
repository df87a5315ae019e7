#pragma once

#include <nlohmann/json.hpp>

#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace lumetry::accuracy {

/// The properties of one element that the window is to show, by name.
using Planned = std::map<std::string, std::string>;

[[nodiscard]] inline std::vector<Planned> readPlan(const char* file) {
    std::vector<Planned> plan;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        Planned element;
        std::istringstream properties(line);
        for (std::string property; std::getline(properties, property, '\t');) {
            const auto equals = property.find('=');
            element.insert_or_assign(property.substr(0, equals), property.substr(equals + 1));
        }
        plan.push_back(std::move(element));
    }
    return plan;
}

[[nodiscard]] inline int number(const Planned& element, const std::string& name) {
    return std::stoi(element.at(name));
}

/// What the window says of its elements, for whoever compares.
class Statement {
public:
    /// @param kept names of the planned properties that the element has been given
    nlohmann::json& add(const std::string& id, const Planned& planned,
                        std::initializer_list<const char*> kept) {
        nlohmann::json element = {{"id", id}};
        for (const char* name : kept) {
            element[name] = planned.at(name);
        }
        elements_.push_back(std::move(element));
        return elements_.back();
    }

    /// @param unit pixels to a unit of length
    void print(double unit) const {
        const nlohmann::json all = {{"unit", unit}, {"elements", elements_}};
        std::puts(all.dump().c_str());
        std::fflush(stdout);
    }

private:
    nlohmann::json elements_ = nlohmann::json::array();
};

/// A place near the lower end of a frame, where a list is hit and none of its items.
[[nodiscard]] inline nlohmann::json pointAtEnd(const nlohmann::json& frame) {
    constexpr double fromEnd = 7;
    return {frame[0].get<double>() + frame[2].get<double>() / 2,
            frame[1].get<double>() + frame[3].get<double>() - fromEnd};
}

} // namespace lumetry::accuracy
