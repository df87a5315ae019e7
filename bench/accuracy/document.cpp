#include "document.h"

#include "hex_color.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace lumetry::accuracy {
namespace {

using Json = nlohmann::json;

constexpr std::size_t tableRows = 5;
constexpr std::size_t tableColumns = 3;

std::string hexOf(std::size_t red, std::size_t green, std::size_t blue) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "#%02zx%02zx%02zx", red, green, blue);
    return text.data();
}

/// Backgrounds that nothing else on the screen has.
std::string paragraphFill(std::size_t n) {
    return hexOf(0xD8 + n, 0xF0, 0xFA - n);
}

std::string cellFill(std::size_t n) {
    return hexOf(0xF6, 0xD8 + n, 0xE8);
}

std::vector<Planned> paragraphsOf(const std::vector<Planned>& plan) {
    constexpr std::array<std::string_view, 6> whats = {"label",  "heading", "link",
                                                       "button", "parts",   "entry"};
    std::vector<Planned> paragraphs;
    for (Planned element : plan) {
        if (std::ranges::find(whats, element.at("what")) != whats.end()) {
            const std::size_t n = paragraphs.size();
            element["fill"] = paragraphFill(n);
            // On a light background the text of buttons and fields would not show.
            if (element.contains("padding")) {
                element["color"] = "#374151";
            }
            element["id"] = "label-" + std::to_string(n + 1);
            paragraphs.push_back(std::move(element));
        }
    }
    return paragraphs;
}

/// Texts in the cells; the first column's are the tallest, so that the others leave room below.
std::vector<Planned> cellsOf(const std::vector<Planned>& plan) {
    const auto paragraphs = paragraphsOf(plan);
    std::vector<Planned> cells;
    for (std::size_t n = 0; n < tableRows * tableColumns; ++n) {
        Planned cell = paragraphs.at(n);
        cell["fill"] = cellFill(n);
        cell["text"] = "Cell text";
        cell["id"] = "cell-" + std::to_string(n + 1);
        if (n % tableColumns == 0) {
            cell["size"] = "24";
        }
        cells.push_back(std::move(cell));
    }
    return cells;
}

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ").append(name).append("='").append(value).append("'");
}

std::string styleOf(const Planned& element, const std::string& paragraphProperties) {
    constexpr double pointsPerPixel = 0.75;
    const double size = std::stoi(element.at("size")) * pointsPerPixel;
    return "<style:style style:family='paragraph'" + attribute("style:name", element.at("id")) +
           "><style:paragraph-properties" + paragraphProperties +
           "/><style:text-properties fo:language='zxx' fo:country='none'" +
           attribute("fo:font-family", element.at("family")) +
           attribute("fo:font-weight", element.at("weight")) +
           attribute("fo:color", element.at("color")) +
           attribute("fo:font-size", std::to_string(size) + "pt") + "/></style:style>\n";
}

std::string fillStyleOf(const Planned& cell) {
    return "<style:style style:family='table-cell'" +
           attribute("style:name", cell.at("id") + "-fill") + "><style:table-cell-properties" +
           attribute("fo:background-color", cell.at("fill")) + "/></style:style>\n";
}

std::string paragraphOf(const Planned& element) {
    return "<text:p" + attribute("text:style-name", element.at("id")) + ">" + element.at("text") +
           "</text:p>";
}

std::string tableOf(const std::vector<Planned>& cells) {
    std::string table = "<table:table><table:table-column" +
                        attribute("table:number-columns-repeated", std::to_string(tableColumns)) +
                        "/>";
    for (std::size_t n = 0; n < cells.size(); ++n) {
        table += n % tableColumns == 0 ? "<table:table-row>" : "";
        table += "<table:table-cell" + attribute("table:style-name", cells[n].at("id") + "-fill") +
                 ">" + paragraphOf(cells[n]) + "</table:table-cell>";
        table += n % tableColumns == tableColumns - 1 ? "</table:table-row>\n" : "";
    }
    return table + "</table:table>";
}

constexpr const char* head = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
 xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"
 office:version="1.2" office:mimetype="application/vnd.oasis.opendocument.text">
<office:automatic-styles><style:page-layout style:name="page"><style:page-layout-properties
 fo:page-width="21cm" fo:page-height="29.7cm" fo:margin="0.5cm"/></style:page-layout>
)";

constexpr const char* masterPage = R"(</office:automatic-styles><office:master-styles>
<style:master-page style:name="Standard" style:page-layout-name="page"/></office:master-styles>
<office:body><office:text>)";

/// Around all pixels of that colour: left, top, width and height; absent where there is none.
std::optional<Json> placeOf(const std::string& color, const Bitmap& screen) {
    const auto channels = *channelsIn(color);
    const auto wanted = static_cast<std::uint32_t>(0xFF000000U | channels[0] << 16 |
                                                   channels[1] << 8 | channels[2]);
    int left = screen.width;
    int top = screen.height;
    int right = -1;
    int bottom = -1;
    for (int y = 0; y < screen.height; ++y) {
        for (int x = 0; x < screen.width; ++x) {
            if (screen.at(x, y) == wanted) {
                left = std::min(left, x);
                top = std::min(top, y);
                right = std::max(right, x);
                bottom = std::max(bottom, y);
            }
        }
    }
    return right < 0 ? std::nullopt
                     : std::optional(Json{left, top, right - left + 1, bottom - top + 1});
}

/// Of all of them, in pixels; absent while one does not show.
std::optional<std::vector<Json>> placesOf(const std::vector<Planned>& elements,
                                          const Bitmap& screen) {
    std::vector<Json> places;
    for (const Planned& element : elements) {
        const auto place = placeOf(element.at("fill"), screen);
        if (!place) {
            return std::nullopt;
        }
        places.push_back(*place);
    }
    return places;
}

/// The typography of what is written at the start of a place.
Json textIn(const Planned& element, const Json& place, double scale) {
    constexpr int intoText = 12;
    constexpr double halfLine = 0.6; // of the size of the font
    const double down = halfLine * std::stoi(element.at("size")) * scale;
    Json stated = {{"id", element.at("id")},
                   {"point", {place[0].get<int>() + intoText, place[1].get<int>() + down}}};
    for (const char* name : {"family", "size", "color", "fill"}) {
        stated[name] = element.at(name);
    }
    // Of others the document keeps what is nearest.
    constexpr std::array<std::string_view, 4> keptWeights = {"400", "600", "700", "900"};
    if (std::ranges::find(keptWeights, element.at("weight")) != keptWeights.end()) {
        stated["weight"] = element.at("weight");
    }
    return stated;
}

/// The cell itself is what is found below its text. Half of the lines around it are its own.
/// @param below the place of the cell in the next row
Json boxAt(const Planned& cell, const Json& place, const Json& below, double scale) {
    constexpr int fromEnd = 3;
    constexpr double tableWidth = 20 / 2.54 * 96; // what the margins leave of the page, in points
    return {{"id", "cellbox-" + cell.at("id")},
            {"frame",
             {place[0], place[1], tableWidth / tableColumns * scale,
              below[1].get<int>() - place[1].get<int>()}},
            {"fill", cell.at("fill")},
            {"point",
             {place[0].get<int>() + place[2].get<int>() / 2,
              place[1].get<int>() + place[3].get<int>() - fromEnd}}};
}

} // namespace

std::string documentText(const std::vector<Planned>& plan) {
    std::string styles;
    std::string text;
    for (const Planned& element : paragraphsOf(plan)) {
        const int indent = std::stoi(element.at("x")) / 4;
        styles += styleOf(element, attribute("fo:margin-top", "4px") +
                                       attribute("fo:margin-left", std::to_string(indent) + "px") +
                                       attribute("fo:background-color", element.at("fill")));
        text += paragraphOf(element) + "\n";
    }
    const auto cells = cellsOf(plan);
    for (const Planned& cell : cells) {
        styles += styleOf(cell, "") + fillStyleOf(cell);
    }
    return head + styles + masterPage + text + tableOf(cells) +
           "</office:text></office:body></office:document>\n";
}

std::optional<std::string> documentTruth(const std::vector<Planned>& plan, const Bitmap& screen,
                                         double scale) {
    const auto paragraphs = paragraphsOf(plan);
    const auto cells = cellsOf(plan);
    const auto paragraphPlaces = placesOf(paragraphs, screen);
    const auto cellPlaces = placesOf(cells, screen);
    if (!paragraphPlaces || !cellPlaces) {
        return std::nullopt;
    }
    Json elements = Json::array();
    for (std::size_t n = 0; n < paragraphs.size(); ++n) {
        elements.push_back(textIn(paragraphs[n], paragraphPlaces->at(n), scale));
    }
    for (std::size_t n = 0; n < cells.size(); ++n) {
        elements.push_back(textIn(cells[n], cellPlaces->at(n), scale));
        // The first row and the last have lines to themselves.
        if (n % tableColumns != 0 && n > tableColumns && n + tableColumns < cells.size()) {
            elements.push_back(
                boxAt(cells[n], cellPlaces->at(n), cellPlaces->at(n + tableColumns), scale));
        }
    }
    return Json({{"unit", 1}, {"elements", elements}}).dump();
}

} // namespace lumetry::accuracy
