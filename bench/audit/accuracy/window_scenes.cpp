#include "layout.h"
#include "scene.h"
#include "wcag.h"

namespace lumetry::auditing {
namespace {

Json widgetAt(const char* what, const Rect& box, const std::string& css) {
    return {{"what", what},
            {"x", static_cast<int>(box.x)},
            {"y", static_cast<int>(box.y)},
            {"width", static_cast<int>(box.width)},
            {"height", static_cast<int>(box.height)},
            {"css", css}};
}

std::set<std::string> brokenIf(bool broken, const char* rule) {
    return broken ? std::set<std::string>{rule} : std::set<std::string>();
}

Scene contrastScene() {
    Scene scene = {"contrast", {}, {"contrast", "name", "text-size", "target-size"}, {}};
    Layout layout;
    for (const TextCase& text : contrastCases()) {
        const Rect box = layout.place({200, 34}, 6);
        Json widget =
            widgetAt("label", box,
                     "font-family: 'DejaVu Sans'; font-size: " + std::to_string(text.size) +
                         "px; font-weight: " + (text.bold ? "bold" : "normal") + "; color: " +
                         hexOf(text.color) + "; background: " + hexOf(text.fill) + ";");
        widget["text"] = "Sample text";
        scene.items.push_back(
            {text.what, box, brokenIf(text.lacksContrast, "contrast"), "", std::move(widget)});
    }
    return scene;
}

Scene targetScene() {
    Scene scene = {"targets", {}, {"target-size", "name"}, {}};
    Layout layout;
    for (const TargetCase& target : targetCases()) {
        const Rect room = layout.place({120, 48});
        for (const auto& [place, tooSmall] : target.targets) {
            const Rect box = {room.x + place.x, room.y + place.y, place.width, place.height};
            Json widget = widgetAt("button", box, "");
            widget["name"] = "Go";
            scene.items.push_back({"button: " + target.what, box, brokenIf(tooSmall, "target-size"),
                                   "", std::move(widget)});
        }
    }
    return scene;
}

Scene nameScene() {
    struct Case {
        const char* what;
        const char* widget;
        const char* text;  ///< on it
        const char* name;  ///< by which it is announced
        const char* label; ///< beside it
        bool missing;
    };
    constexpr auto cases = std::to_array<Case>({
        {"button with a text", "button", "Save", "", "", false},
        {"button with nothing", "button", "", "", "", true},
        {"button with a name", "button", "", "Close", "", false},
        {"button with an icon that GTK has a name for", "icon-button", "", "", "", false},
        {"button with a picture", "picture-button", "", "", "", true},
        {"button with a picture and a name", "picture-button", "", "Close", "", false},
        {"entry with nothing", "entry", "", "", "", true},
        {"entry with a text only", "entry", "Ada", "", "", true},
        {"entry with a name", "entry", "", "Name", "", false},
        {"entry with a label", "entry", "", "", "Name", false},
        {"area with nothing", "area", "", "", "", true},
        {"area with a text only", "area", "Text", "", "", true},
        {"area with a label", "area", "", "", "Note", false},
        {"spin button with nothing", "spin", "", "", "", true},
        {"spin button with a label", "spin", "", "", "Age", false},
        {"check box with nothing", "check", "", "", "", true},
        {"check box with a text", "check", "On", "", "", false},
        {"radio button with nothing", "radio", "", "", "", true},
        {"radio button with a text", "radio", "On", "", "", false},
        {"switch with nothing", "switch", "", "", "", true},
        {"switch with a label", "switch", "", "", "On", false},
        {"picture with nothing", "image", "", "", "", true},
        {"picture with a name", "image", "", "Cover", "", false},
    });
    Scene scene = {"names", {}, {"name"}, {}};
    Layout layout;
    for (const Case& each : cases) {
        const Rect box = layout.place({220, 60});
        Json widget = widgetAt(each.widget, {box.x, box.y + 22, 120, 36}, "");
        widget["text"] = each.text;
        widget["name"] = each.name;
        widget["label"] = each.label;
        scene.items.push_back(
            {each.what, box, brokenIf(each.missing, "name"), "", std::move(widget)});
    }
    return scene;
}

Scene textSizeScene() {
    Scene scene = {"text sizes", {}, {"text-size"}, {}};
    Layout layout;
    for (const int size : {6, 7, 8, 9, 10, 12}) {
        for (const char* const family : {"DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono"}) {
            const Rect box = layout.place({180, 24});
            Json widget = widgetAt("label", box,
                                   "font-family: '" + std::string(family) +
                                       "'; font-size: " + std::to_string(size) + "px;");
            widget["text"] = "Small print";
            const bool inCutPoints = size == 9; // 6 of them, which is 8px
            scene.items.push_back({std::to_string(size) + "px " + family, box,
                                   brokenIf(size < 9, "text-size"), "", std::move(widget),
                                   inCutPoints});
        }
    }
    return scene;
}

Scene consistencyScene() {
    Scene scene = {"consistency", {}, {"consistency"}, {}};
    Layout layout;
    for (const HeightCase& each : heightCases()) {
        const Rect row = layout.place({200, 40}, 60);
        for (std::size_t place = 0; place < each.heights.size(); ++place) {
            const Rect box = {row.x + 68 * static_cast<double>(place), row.y, 60,
                              static_cast<double>(each.heights[place])};
            Json widget = widgetAt("button", box, "");
            widget["text"] = "Save";
            scene.items.push_back({each.what + ", " + std::to_string(place + 1), box,
                                   brokenIf(each.odd.contains(place), "consistency"), "",
                                   std::move(widget)});
        }
    }
    for (const FillCase& each : fillCases()) {
        layout.startRow();
        for (const bool last : {false, false, true}) {
            const Rect box = layout.place({120, 24}, 16);
            const unsigned fill = last ? each.other : each.usual;
            scene.items.push_back({"fills: " + each.what + ", " + hexOf(fill), box,
                                   brokenIf(last && each.nearlyEqual, "consistency"), "",
                                   widgetAt("box", box, "background: " + hexOf(fill) + ";")});
        }
    }
    return scene;
}

} // namespace

std::vector<Scene> windowScenes() {
    return {contrastScene(), targetScene(), nameScene(), textSizeScene(), consistencyScene()};
}

} // namespace lumetry::auditing
