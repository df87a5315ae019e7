#include "layout.h"
#include "scene.h"
#include "wcag.h"

#include <array>
#include <utility>

namespace lumetry::auditing {
namespace {

std::string number(double value) {
    return std::to_string(static_cast<int>(value));
}

/// Absolutely placed.
std::string styleAt(const Rect& box) {
    return "position:absolute;left:" + number(box.x) + "px;top:" + number(box.y) +
           "px;width:" + number(box.width) + "px;height:" + number(box.height) + "px;";
}

Scene contrastScene() {
    Scene scene = {"contrast", {}, {"contrast", "name", "text-size", "target-size"}, {}};
    Layout layout;
    for (const TextCase& text : contrastCases()) {
        const Rect box = layout.place({200, 34}, 6);
        scene.items.push_back(
            {text.what,
             box,
             text.lacksContrast ? std::set<std::string>{"contrast"} : std::set<std::string>(),
             "<p style=\"" + styleAt(box) + "padding:0 4px;font-size:" + number(text.size) +
                 "px;line-height:34px;font-weight:" + (text.bold ? "bold" : "normal") + ";color:" +
                 hexOf(text.color) + ";background:" + hexOf(text.fill) + "\">Sample text</p>",
             {}});
    }
    return scene;
}

/// Buttons and fields in turn.
Scene targetScene() {
    Scene scene = {"targets", {}, {"target-size", "name"}, {}};
    Layout layout;
    for (const TargetCase& target : targetCases()) {
        for (const char* const tag : {"button aria-label=Go", "input type=checkbox aria-label=Go",
                                      "input aria-label=Go value=x"}) {
            const Rect room = layout.place({120, 48});
            for (const auto& [place, tooSmall] : target.targets) {
                const Rect box = {room.x + place.x, room.y + place.y, place.width, place.height};
                scene.items.push_back(
                    {std::string(tag) + ": " + target.what,
                     box,
                     tooSmall ? std::set<std::string>{"target-size"} : std::set<std::string>(),
                     "<" + std::string(tag) + " style=\"" + styleAt(box) + "\">" +
                         (tag[0] == 'b' ? "</button>" : ""),
                     {}});
            }
        }
    }
    return scene;
}

constexpr const char* picture = "src=\"data:image/svg+xml,<svg xmlns='http://www.w3.org/2000/svg' "
                                "width='20' height='20'><circle cx='10' cy='10' r='8' "
                                "fill='%23334155'/></svg>\"";

Scene nameScene() {
    struct Case {
        const char* what;
        std::string html;
        bool missing;
    };
    const std::string shape = std::string("<img ") + picture;
    const std::vector<Case> cases = {
        {"button with a text", "<button>Save</button>", false},
        {"button with nothing", "<button></button>", true},
        {"button with an aria-label", "<button aria-label=Close></button>", false},
        {"button with an empty aria-label", "<button aria-label=''></button>", true},
        {"button with a title", "<button title=Close></button>", false},
        {"button with a picture without alt", "<button>" + shape + "></button>", true},
        {"button with a picture with alt", "<button>" + shape + " alt=Close></button>", false},
        {"button with an empty alt", "<button>" + shape + " alt=''></button>", true},
        {"button with white space", "<button> &nbsp; </button>", true},
        {"role button with a text", "<div role=button tabindex=0>Save</div>", false},
        {"role button with nothing", "<div role=button tabindex=0></div>", true},
        {"submit without a value", "<input type=submit>", false},
        {"button input without a value", "<input type=button>", true},
        {"button input with a value", "<input type=button value=Save>", false},
        {"field with nothing", "<input>", true},
        {"field with a value only", "<input value=Ada>", true},
        {"field with a label for it", "<label for=f1>Name</label><input id=f1>", false},
        {"field in a label", "<label>Name <input></label>", false},
        {"field in an empty label", "<label><input></label>", true},
        {"field with an aria-label", "<input aria-label=Name>", false},
        {"field with aria-labelledby", "<span id=l1>Name</span><input aria-labelledby=l1>", false},
        {"field with a missing aria-labelledby", "<input aria-labelledby=none>", true},
        {"field with a title", "<input title=Name>", false},
        {"field with a placeholder", "<input placeholder=Name>", false},
        {"password with nothing", "<input type=password>", true},
        {"search field with nothing", "<input type=search>", true},
        {"number field with nothing", "<input type=number value=1>", true},
        {"number field with a label", "<label>Age <input type=number value=1></label>", false},
        {"area with nothing", "<textarea></textarea>", true},
        {"area with a text only", "<textarea>Text</textarea>", true},
        {"area with a label", "<label>Note <textarea></textarea></label>", false},
        {"select with nothing", "<select><option>One</select>", true},
        {"select with a label", "<label>Size <select><option>One</select></label>", false},
        {"check box with nothing", "<input type=checkbox>", true},
        {"check box with a label", "<label><input type=checkbox> On</label>", false},
        {"radio button with nothing", "<input type=radio>", true},
        {"radio button with a label", "<label><input type=radio> On</label>", false},
        {"role switch with nothing", "<div role=switch tabindex=0 aria-checked=true></div>", true},
        {"role switch with a label",
         "<div role=switch tabindex=0 aria-checked=true aria-label=On></div>", false},
        {"picture with alt", shape + " alt=Cover>", false},
        {"picture without alt", shape + ">", true},
        {"picture with an empty alt", shape + " alt=''>", false},
        {"picture with an aria-label", shape + " aria-label=Cover>", false},
        {"role img with nothing", "<div role=img></div>", true},
        {"role img with a label", "<div role=img aria-label=Cover></div>", false},
        {"drawing without a title",
         "<svg role=img width=40 height=40><circle cx=20 cy=20 r=16></svg>", true},
        {"drawing with a title",
         "<svg role=img width=40 height=40><title>Sun</title><circle cx=20 cy=20 r=16></svg>",
         false},
    };
    Scene scene = {"names", {}, {"name"}, {}};
    Layout layout;
    for (const Case& each : cases) {
        const Rect box = layout.place({220, 60});
        scene.items.push_back(
            {each.what,
             box,
             each.missing ? std::set<std::string>{"name"} : std::set<std::string>(),
             "<div style=\"" + styleAt(box) + "\">" + each.html + "</div>",
             {}});
    }
    return scene;
}

Scene textSizeScene() {
    Scene scene = {"text sizes", {}, {"text-size"}, {}};
    Layout layout;
    for (const std::string size : {"6", "7", "8", "8.4", "8.6", "9", "9.4", "10", "12"}) {
        for (const char* const family : {"DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono"}) {
            const Rect box = layout.place({180, 24});
            const bool inHalfPoints = size.starts_with("8."); // 6.5 of them, which is 8.67px
            scene.items.push_back(
                {size + "px " + family,
                 box,
                 std::stod(size) < 9 ? std::set<std::string>{"text-size"} : std::set<std::string>(),
                 "<p style=\"" + styleAt(box) + "font:" + size + "px '" + family +
                     "'\">Small print</p>",
                 {},
                 inHalfPoints});
        }
    }
    for (const char* const size : {"7", "8", "9", "10"}) {
        const Rect box = layout.place({180, 28});
        scene.items.push_back(
            {"button, " + std::string(size) + "px",
             box,
             std::stod(size) < 9 ? std::set<std::string>{"text-size"} : std::set<std::string>(),
             "<button style=\"" + styleAt(box) + "font-size:" + size + "px\">Small print</button>",
             {}});
    }
    return scene;
}

void addHeights(Scene& scene, Layout& layout) {
    for (const HeightCase& each : heightCases()) {
        const Rect row = layout.place({200, 40}, 60);
        for (std::size_t place = 0; place < each.heights.size(); ++place) {
            const Rect box = {row.x + 68 * static_cast<double>(place), row.y, 60,
                              static_cast<double>(each.heights[place])};
            scene.items.push_back({each.what + ", " + std::to_string(place + 1),
                                   box,
                                   each.odd.contains(place) ? std::set<std::string>{"consistency"}
                                                            : std::set<std::string>(),
                                   "<button style=\"" + styleAt(box) + "\">Save</button>",
                                   {}});
        }
    }
}

/// Buttons of one size whose texts begin elsewhere.
void addPaddings(Scene& scene, Layout& layout) {
    constexpr auto paddings = std::to_array<std::pair<int, bool>>(
        {{8, false}, {9, true}, {9, false}, {13, false}, {11, true}, {11, false}});
    layout.startRow();
    for (const auto& [padding, odd] : paddings) {
        const Rect box = layout.place({80, 28}, 8);
        scene.items.push_back({"button, padding " + std::to_string(padding),
                               box,
                               odd ? std::set<std::string>{"consistency"} : std::set<std::string>(),
                               "<button style=\"" + styleAt(box) + "text-align:left;padding:0 " +
                                   std::to_string(padding) + "px\">Save</button>",
                               {}});
    }
}

void addFills(Scene& scene, Layout& layout) {
    for (const FillCase& each : fillCases()) {
        layout.startRow();
        for (const bool last : {false, false, true}) {
            const Rect box = layout.place({120, 24}, 16);
            const unsigned fill = last ? each.other : each.usual;
            scene.items.push_back({"fills: " + each.what + ", " + hexOf(fill),
                                   box,
                                   last && each.nearlyEqual ? std::set<std::string>{"consistency"}
                                                            : std::set<std::string>(),
                                   "<div role=group aria-label=Box style=\"" + styleAt(box) +
                                       "background:" + hexOf(fill) + "\"></div>",
                                   {}});
        }
    }
}

void addGaps(Scene& scene, Layout& layout) {
    constexpr auto gaps = std::to_array<std::pair<int, bool>>({{4, false},
                                                               {5, true},
                                                               {6, false},
                                                               {7, true},
                                                               {8, false},
                                                               {9, true},
                                                               {11, true},
                                                               {12, false}});
    layout.startRow();
    for (const auto& [gap, odd] : gaps) {
        const Rect box = layout.place({120, 120}, 30);
        std::string items;
        for (int item = 0; item < 3; ++item) {
            items +=
                "<li style=\"height:20px;margin-bottom:" + std::to_string(gap) + "px\">Item</li>";
        }
        scene.items.push_back({"list, gap " + std::to_string(gap),
                               box,
                               odd ? std::set<std::string>{"consistency"} : std::set<std::string>(),
                               "<ul style=\"" + styleAt(box) + "\">" + items + "</ul>",
                               {}});
    }
}

Scene consistencyScene() {
    Scene scene = {"consistency", {}, {"consistency"}, {}};
    Layout layout;
    addHeights(scene, layout);
    addPaddings(scene, layout);
    addFills(scene, layout);
    addGaps(scene, layout);
    return scene;
}

Scene varietyScene() {
    Scene scene = {"variety", {}, {"consistency"}, {"font sizes", "font families"}};
    Layout layout;
    for (int size = 10; size < 19; ++size) {
        const Rect box = layout.place({180, 28});
        const char* const family = size % 4 == 0   ? "DejaVu Sans"
                                   : size % 4 == 1 ? "DejaVu Serif"
                                   : size % 4 == 2 ? "DejaVu Sans Mono"
                                                   : "Inter";
        scene.items.push_back({std::to_string(size) + "px " + family,
                               box,
                               {},
                               "<p style=\"" + styleAt(box) + "font:" + std::to_string(size) +
                                   "px '" + family + "'\">Text</p>",
                               {}});
    }
    return scene;
}

} // namespace

std::vector<Scene> pageScenes() {
    return {contrastScene(), targetScene(),      nameScene(),
            textSizeScene(), consistencyScene(), varietyScene()};
}

} // namespace lumetry::auditing
