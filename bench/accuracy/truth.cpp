#include "truth.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <stdexcept>

namespace lumetry::accuracy {
namespace {

using Json = nlohmann::json;

Rect rectOf(const Json& json) {
    return {json.at("x"), json.at("y"), json.at("width"), json.at("height")};
}

/// @param css "rgb(29, 78, 216)"
Color colorOf(const std::string& css) {
    constexpr double largest = 255;
    int red = 0;
    int green = 0;
    int blue = 0;
    if (std::sscanf(css.c_str(), "rgb(%d, %d, %d)", &red, &green, &blue) != 3) {
        throw std::runtime_error("the page uses a colour that is not opaque: " + css);
    }
    return {red / largest, green / largest, blue / largest, 1};
}

Truth truthOf(const Json& json) {
    Truth truth;
    truth.id = json.at("id");
    truth.kind = json.at("kind");
    truth.role = json.at("role");
    truth.point = {json.at("point").at("x"), json.at("point").at("y")};
    truth.frame = rectOf(json.at("frame"));
    truth.text = rectOf(json.at("text"));
    for (const Json& item : json.at("items")) {
        truth.items.push_back(rectOf(item));
    }
    truth.family = json.at("family");
    truth.fontSize = json.at("fontSize");
    truth.fontWeight = json.at("fontWeight");
    truth.color = colorOf(json.at("color"));
    truth.fill = colorOf(json.at("fill"));
    truth.radius = json.at("radius");
    truth.padding = json.at("padding");
    return truth;
}

} // namespace

std::vector<Truth> parseTruth(const std::string& text) {
    const Json json = Json::parse(text);
    const Json& overflow = json.at("overflow");
    if (overflow.at("x") > 0 || overflow.at("y") > 0) {
        throw std::runtime_error("the page is larger than the screen: " + overflow.dump());
    }
    if (json.at("origin") != Json({{"x", 0}, {"y", 0}}) || json.at("pixelRatio") != 1) {
        throw std::runtime_error("the page is not on the screen pixel for pixel");
    }
    std::vector<Truth> truths;
    for (const Json& element : json.at("elements")) {
        truths.push_back(truthOf(element));
    }
    return truths;
}

} // namespace lumetry::accuracy
