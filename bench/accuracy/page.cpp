#include "page.h"

#include <array>
#include <string_view>

namespace lumetry::accuracy {
namespace {

std::string valueOf(const Planned& element, const std::string& name) {
    const auto found = element.find(name);
    return found == element.end() ? std::string() : found->second;
}

/// The declarations of the properties that the element has.
std::string styleOf(const Planned& element) {
    struct Property {
        const char* name;
        const char* css;
        const char* unit;
    };
    constexpr auto properties = std::to_array<Property>({{"x", "left", "px"},
                                                         {"y", "top", "px"},
                                                         {"family", "font-family", ""},
                                                         {"weight", "font-weight", ""},
                                                         {"size", "font-size", "px"},
                                                         {"fill", "background", ""},
                                                         {"color", "color", ""},
                                                         {"radius", "border-radius", "px"},
                                                         {"padding", "padding", "px"},
                                                         {"gap", "gap", "px"},
                                                         {"width", "width", "px"},
                                                         {"height", "height", "px"}});
    std::string style = "position:absolute;";
    for (const Property& property : properties) {
        const std::string value = valueOf(element, property.name);
        if (!value.empty()) {
            style += std::string(property.css) + ":" + value + property.unit + ";";
        }
    }
    return style;
}

std::string itemsOf(const Planned& element, std::string_view tag) {
    std::string items;
    for (int n = 0; n < std::stoi(element.at("items")); ++n) {
        const bool hidden = std::to_string(n) == element.at("hidden");
        items += "<" + std::string(tag) + (hidden ? " hidden" : "") + ">Item " + std::to_string(n) +
                 "</" + std::string(tag) + ">";
    }
    return items;
}

std::string rowsOf(const Planned& element) {
    std::string rows;
    for (int row = 0; row < std::stoi(element.at("rows")); ++row) {
        rows += "<tr>";
        for (int column = 0; column < std::stoi(element.at("columns")); ++column) {
            rows += "<td>Cell " + std::to_string(column) + "</td>";
        }
        rows += "</tr>";
    }
    return rows;
}

std::string pictureOf(const Planned& element) {
    const std::string fill = std::string(element.at("fill")).replace(0, 1, "%23");
    return "img alt=Cover src=\"data:image/svg+xml,<svg xmlns='http://www.w3.org/2000/svg' "
           "width='10' height='10'><rect width='10' height='10' fill='" +
           fill + "'/></svg>\"";
}

struct Markup {
    std::string tag; ///< with its attributes
    std::string content;
    bool closed = true;
};

Markup markupOf(const Planned& element) {
    const std::string& what = element.at("what");
    const std::string text = valueOf(element, "text");
    const std::map<std::string_view, Markup> plain = {
        {"label", {"p", text}},
        {"heading", {"h2", text}},
        {"link", {"a href=#", text}},
        {"button", {"button", text}},
        // Browsers have objects for what is inside a button only where it is more than a text.
        {"parts", {"button", "<span>" + text + "</span><span> to the cart</span>"}},
        {"entry", {"input value=\"" + text + "\"", "", false}},
        {"area", {"textarea", text}},
        {"check", {"input type=checkbox", "", false}},
        {"radio", {"input type=radio", "", false}},
        {"spin", {"input type=number value=12", "", false}},
        {"popup", {"select", "<option>" + text + "</option>"}},
        {"combo", {"input list=choices value=\"" + text + "\"", "", false}}};
    if (const auto found = plain.find(what); found != plain.end()) {
        return found->second;
    }
    if (what == "list") {
        return {"ul", itemsOf(element, "li")};
    }
    if (what == "table") {
        return {"table role=table", rowsOf(element)};
    }
    if (what == "image") {
        return {pictureOf(element), "", false};
    }
    if (what == "menubar") {
        return {"div role=menubar", "<div role=menuitem>" + text + "</div>"};
    }
    return {what == "panel" ? "dialog open" : "div role=group aria-label=Box",
            itemsOf(element, "p")};
}

std::string htmlOf(const Planned& element) {
    const auto [tag, content, closed] = markupOf(element);
    const std::string name = tag.substr(0, tag.find(' '));
    return "<" + tag + " id=" + element.at("id") + " class=" + element.at("what") + " style=\"" +
           styleOf(element) + "\">" + content + (closed ? "</" + name + ">" : "") + "\n";
}

constexpr const char* style = R"(<style>
  * { margin: 0; box-sizing: border-box; }
  body { background: white; font: 13px 'DejaVu Sans'; }
  main * { white-space: nowrap; }
  button, input, textarea, select, dialog { border: 0; outline: 0; }
  textarea { resize: none; white-space: pre-wrap; }
  input[type=checkbox], input[type=radio] { width: 16px; height: 16px; }
  select { appearance: none; }
  h2 { padding: 2px 16px; }
  ul, table { list-style: none; padding: 10px; background: #f3f4f6; }
  li { height: 24px; font: 12px 'DejaVu Sans'; background: #dbeafe; }
  .box, .panel, .row { display: flex; flex-direction: column; }
  .row { flex-direction: row; }
  .box p, .panel p, .row p { width: 64px; height: 20px; }
  [hidden] { display: none; }
  [role=menuitem] { padding: 6px 12px; }
  dialog { right: auto; }
  table { border-spacing: 0; }
  td { padding: 3px 8px; }
</style><datalist id=choices><option>One</datalist>)";

} // namespace

std::string pageHtml(const std::vector<Planned>& plan) {
    std::string elements;
    for (const Planned& element : plan) {
        elements += htmlOf(element);
    }
    return "<!doctype html><html lang=en><meta charset=utf-8><title>Accuracy</title>" +
           std::string(style) + "<main>" + elements + "</main><script>" + pageScript() +
           "</script>";
}

} // namespace lumetry::accuracy
