#include "app/status_menu.h"

#include <array>
#include <string>
#include <utility>

namespace lumetry {
namespace {

constexpr double iconSize = 18;
constexpr double iconGrid = 24;
constexpr double iconLineWidth = 1.9; ///< in units of the grid

struct Shortcut {
    const char* keys;
    const char* description;
};

constexpr std::array<Shortcut, 4> shortcuts = {{
    {"⌃⇧M", "turn inspect on / off"},
    {"Hover", "size · font · padding · color"},
    {"Hold ⌥", "measure the gap between two elements"},
    {"Esc", "exit inspect mode"},
}};

/// The mark on its grid, y downwards.
const std::vector<std::vector<Point>>& iconLines() {
    static const std::vector<std::vector<Point>> lines = {
        {{4.5, 8.5}, {4.5, 4.5}, {8.5, 4.5}},
        {{15.5, 4.5}, {19.5, 4.5}, {19.5, 8.5}},
        {{19.5, 15.5}, {19.5, 19.5}, {15.5, 19.5}},
        {{8.5, 19.5}, {4.5, 19.5}, {4.5, 15.5}},
        {{9, 12}, {15, 12}},
        {{9, 10}, {9, 14}},
        {{15, 10}, {15, 14}}};
    return lines;
}

StrokedPath drawIcon(const Rect& destination) {
    const double unit = destination.width / iconGrid;
    StrokedPath path;
    path.lineWidth = iconLineWidth * unit;
    for (auto line : iconLines()) {
        for (Point& point : line) {
            point = {destination.x + point.x * unit, destination.y + point.y * unit};
        }
        path.lines.push_back(std::move(line));
    }
    return path;
}

MenuItem separator() {
    MenuItem item;
    item.separator = true;
    return item;
}

MenuItem note(std::string title) {
    MenuItem item;
    item.title = std::move(title);
    item.enabled = false;
    return item;
}

MenuItem command(std::string title, std::string keyEquivalent, std::function<void()> action) {
    MenuItem item;
    item.title = std::move(title);
    item.keyEquivalent = std::move(keyEquivalent);
    item.action = std::move(action);
    return item;
}

} // namespace

TemplateImage statusBarIcon() {
    return {{iconSize, iconSize}, drawIcon};
}

std::vector<MenuItem> statusMenu(std::function<void()> toggle, std::function<void()> quit) {
    std::vector<MenuItem> menu;
    menu.push_back(command("Toggle Inspect  ⌃⇧M", "", std::move(toggle)));
    menu.push_back(separator());
    menu.push_back(note("How to use"));
    for (const auto& [keys, description] : shortcuts) {
        menu.push_back(note(std::string("      ") + keys + "  —  " + description));
    }
    menu.push_back(separator());
    menu.push_back(command("Quit Lumetry", "q", std::move(quit)));
    return menu;
}

} // namespace lumetry
