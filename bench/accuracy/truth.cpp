#include "truth.h"

#include "hex_color.h"

#include <nlohmann/json.hpp>

#include <map>
#include <stdexcept>

namespace lumetry::accuracy {
namespace {

using Json = nlohmann::json;

/// What kind of thing is measured where an element is, and in which role.
struct Sort {
    const char* kind;
    const char* role;
};

const Sort& sortOf(const std::string& what) {
    static const std::map<std::string, Sort> sorts = {
        {"label", {"text", "StaticText"}},     {"heading", {"heading", "Heading"}},
        {"link", {"text", "StaticText"}},      {"cell", {"text", "StaticText"}},
        {"cellbox", {"group", "Cell"}},        {"button", {"control", "Button"}},
        {"parts", {"control", "Button"}},      {"check", {"control", "CheckBox"}},
        {"radio", {"control", "RadioButton"}}, {"popup", {"control", "PopUpButton"}},
        {"entry", {"input", "TextField"}},     {"area", {"input", "TextArea"}},
        {"spin", {"input", "TextField"}},      {"combo", {"input", "ComboBox"}},
        {"menubar", {"entry", "MenuBarItem"}}, {"list", {"list", "List"}},
        {"table", {"list", "Table"}},          {"box", {"group", "Group"}},
        {"row", {"group", "Group"}},           {"panel", {"group", "Group"}},
        {"image", {"picture", "Image"}}};
    return sorts.at(what);
}

/// Programs may give numbers as texts.
double numberOf(const Json& json) {
    return json.is_string() ? std::stod(json.get<std::string>()) : json.get<double>();
}

template<class Value, class Convert>
void read(const Json& json, const char* name, std::optional<Value>& into, Convert convert) {
    if (const auto found = json.find(name); found != json.end()) {
        into = convert(*found);
    }
}

Color colorOf(const Json& json) {
    constexpr double largest = 255;
    const auto channels = channelsIn(json.get<std::string>());
    if (!channels) {
        throw std::runtime_error("no colour: " + json.dump());
    }
    const auto& [red, green, blue] = *channels;
    return {red / largest, green / largest, blue / largest, 1};
}

/// The lengths and places of one window's elements, in points of the screen.
class Lengths {
public:
    Lengths(const Json& json, Point origin, double scale)
        : pointsPerUnit_(numberOf(json.at("unit")) / scale), origin_{origin.x / scale,
                                                                     origin.y / scale} {
        if (const auto own = json.find("origin"); own != json.end()) {
            origin_ = {numberOf(own->at(0)) / scale, numberOf(own->at(1)) / scale};
        }
    }

    [[nodiscard]] double length(const Json& json) const { return numberOf(json) * pointsPerUnit_; }
    [[nodiscard]] Point point(const Json& json) const {
        return {origin_.x + length(json.at(0)), origin_.y + length(json.at(1))};
    }
    [[nodiscard]] Rect rect(const Json& json) const {
        const Point corner = point(json);
        return {corner.x, corner.y, length(json.at(2)), length(json.at(3))};
    }
    [[nodiscard]] std::array<double, 4> sides(const Json& json) const {
        return {length(json.at(0)), length(json.at(1)), length(json.at(2)), length(json.at(3))};
    }

private:
    double pointsPerUnit_;
    Point origin_;
};

/// In the middle of an element is its text, and towards its end, in its padding, the element
/// itself.
Point pointIn(const Truth& truth) {
    constexpr double fromEdge = 4;
    const Rect frame = truth.frame.value_or(Rect());
    if (truth.kind == "heading" || truth.kind == "list" || truth.kind == "group" ||
        truth.kind == "entry") {
        return {frame.maxX() - fromEdge, frame.midY()};
    }
    const Rect target = truth.kind == "text" ? truth.text.value_or(frame) : frame;
    return {target.midX(), target.midY()};
}

Truth truthOf(const Json& json, const Lengths& lengths) {
    const auto asText = [](const Json& value) { return value.get<std::string>(); };
    const auto asLength = [&](const Json& value) { return lengths.length(value); };
    const auto asRect = [&](const Json& value) { return lengths.rect(value); };
    Truth truth;
    truth.id = json.at("id");
    truth.what = truth.id.substr(0, truth.id.find('-'));
    const Sort& sort = sortOf(truth.what);
    truth.kind = sort.kind;
    truth.role = sort.role;
    read(json, "frame", truth.frame, asRect);
    read(json, "text", truth.text, asRect);
    for (const Json& item : json.value("items", Json::array())) {
        truth.items.push_back(lengths.rect(item));
    }
    read(json, "family", truth.family, asText);
    read(json, "size", truth.fontSize, numberOf);
    read(json, "weight", truth.fontWeight,
         [](const Json& value) { return static_cast<int>(numberOf(value)); });
    read(json, "color", truth.color, colorOf);
    read(json, "fill", truth.fill, colorOf);
    read(json, "radius", truth.radius, asLength);
    read(json, "padding", truth.padding, [&](const Json& value) { return lengths.sides(value); });
    std::optional<Point> point;
    read(json, "point", point, [&](const Json& value) { return lengths.point(value); });
    truth.point = point ? *point : pointIn(truth);
    return truth;
}

} // namespace

std::vector<Truth> parseTruth(const std::string& json, Point origin, double scale) {
    const Json told = Json::parse(json);
    const Lengths lengths(told, origin, scale);
    std::vector<Truth> truths;
    for (const Json& element : told.at("elements")) {
        truths.push_back(truthOf(element, lengths));
    }
    return truths;
}

} // namespace lumetry::accuracy
