#include "page.h"

#include <array>
#include <cstddef>
#include <sstream>

namespace lumetry::accuracy {
namespace {

struct Face {
    const char* family;
    int weight;
};

constexpr std::array<Face, 11> faces = {{{"Inter", 400},
                                         {"DejaVu Sans", 400},
                                         {"Inter", 600},
                                         {"DejaVu Serif", 400},
                                         {"Inter", 500},
                                         {"DejaVu Sans Mono", 400},
                                         {"Inter", 700},
                                         {"DejaVu Serif", 700},
                                         {"Inter", 300},
                                         {"DejaVu Sans", 700},
                                         {"Inter", 900}}};

struct Colors {
    const char* fill;
    const char* text;
};

constexpr std::array<Colors, 9> colorPairs = {{{"#1d4ed8", "#ffffff"},
                                               {"#fde68a", "#78350f"},
                                               {"#111827", "#f9fafb"},
                                               {"#dcfce7", "#166534"},
                                               {"#b91c1c", "#fee2e2"},
                                               {"#e5e7eb", "#374151"},
                                               {"#7c3aed", "#ede9fe"},
                                               {"#0f766e", "#ccfbf1"},
                                               {"#fbcfe8", "#9d174d"}}};

constexpr std::array<int, 10> radii = {0, 4, 8, 12, 16, 2, 20, 6, 24, 10};
constexpr std::array<int, 7> fontSizes = {14, 16, 13, 18, 12, 20, 15};

template<class Value, std::size_t count>
const Value& nth(const std::array<Value, count>& values, std::size_t n) {
    return values[n % count];
}

std::string px(int value) {
    return std::to_string(value) + "px";
}

std::string fontStyle(const Face& face, int size) {
    return std::string("font-family:'") + face.family +
           "';font-weight:" + std::to_string(face.weight) + ";font-size:" + px(size) + ";";
}

std::string surfaceStyle(const Colors& colors, int radius) {
    return std::string("background:") + colors.fill + ";color:" + colors.text +
           ";border-radius:" + px(radius) + ";";
}

/// Writes elements one after another, each with an id and what it is expected to be measured as.
class PageWriter {
public:
    void beginGroup() { html_ << "<div>\n"; }
    void endGroup() { html_ << "</div>\n"; }

    /// @param tag with further attributes
    /// @param kind as in Truth
    /// @param point "middle", "text" or "edge"
    void add(const std::string& tag, const char* kind, const char* role, const char* point,
             const std::string& style, const std::string& content, bool closed = true) {
        const std::string name = tag.substr(0, tag.find(' '));
        html_ << '<' << tag << " id=\"" << name << '-' << ++number_ << "\" data-kind=" << kind
              << " data-role=" << role << " data-point=" << point << " style=\"" << style << "\">"
              << content;
        if (closed) {
            html_ << "</" << name << '>';
        }
        html_ << '\n';
    }

    [[nodiscard]] std::string text() const { return html_.str(); }

private:
    std::ostringstream html_;
    int number_ = 0;
};

void addButtons(PageWriter& page) {
    constexpr std::array<const char*, 8> labels = {"Save",    "Cancel", "Buy now", "Continue",
                                                   "Sign in", "Delete", "Share",   "Download"};
    constexpr std::array<const char*, 5> paddings = {"8px 16px", "12px", "10px 24px 14px 20px",
                                                     "16px 32px", "20px 12px"};
    // Some as large as their text needs, with a fraction of a pixel; the others of a fixed size.
    for (std::size_t n = 0; n < 12; ++n) {
        page.add("button", "control", "Button", "middle",
                 fontStyle(nth(faces, n), nth(fontSizes, n)) +
                     surfaceStyle(nth(colorPairs, n), nth(radii, n)) +
                     "padding:" + nth(paddings, n) + ";",
                 nth(labels, n));
    }
    for (std::size_t n = 12; n < 24; ++n) {
        const int width = 96 + 8 * static_cast<int>(n % 5);
        const int height = 40 + 4 * static_cast<int>(n % 4);
        page.add("button", "control", "Button", "middle",
                 fontStyle(nth(faces, n), nth(fontSizes, n)) +
                     surfaceStyle(nth(colorPairs, n), nth(radii, n)) + "width:" + px(width) +
                     ";height:" + px(height) + ";padding:0;",
                 nth(labels, n));
    }
}

/// Browsers have objects for what is inside a button only where it is more than a text.
void addButtonsWithParts(PageWriter& page) {
    constexpr std::array<const char*, 4> paddings = {"8px 16px", "12px", "10px 24px 14px 20px",
                                                     "6px 32px"};
    for (std::size_t n = 0; n < 6; ++n) {
        page.add("button", "control", "Button", "middle",
                 fontStyle(nth(faces, n + 4), nth(fontSizes, n + 1)) +
                     surfaceStyle(nth(colorPairs, n + 3), nth(radii, n + 1)) +
                     "padding:" + nth(paddings, n) + ";",
                 "<span>Add </span><span>to the cart</span>");
    }
}

void addInputs(PageWriter& page) {
    constexpr std::array<const char*, 4> types = {"text", "email", "search", "text"};
    for (std::size_t n = 0; n < 8; ++n) {
        page.add(std::string("input type=") + nth(types, n) + " value=\"Ada Lovelace\"", "input",
                 "TextField", "middle",
                 fontStyle(nth(faces, n + 3), nth(fontSizes, n)) +
                     surfaceStyle(nth(colorPairs, n + 4), nth(radii, n + 2)) +
                     "width:200px;height:" + px(40 + static_cast<int>(n)) + ";padding:8px 12px;",
                 "", false);
    }
    page.add("textarea", "input", "TextField", "middle",
             fontStyle(nth(faces, 2), 14) + surfaceStyle(nth(colorPairs, 3), 8) +
                 "width:220px;height:72px;padding:10px;resize:none;",
             "Two lines\nof a note");
    page.add("select", "input", "ComboBox", "middle",
             fontStyle(nth(faces, 0), 16) + surfaceStyle(nth(colorPairs, 5), 6) +
                 "width:160px;height:44px;padding:8px;appearance:none;",
             "<option>Monthly</option><option>Yearly</option>");
}

void addTexts(PageWriter& page) {
    constexpr std::array<const char*, 4> textColors = {"#111827", "#1d4ed8", "#b91c1c", "#166534"};
    constexpr std::array<int, 6> headingSizes = {32, 28, 24, 22, 20, 18};
    for (std::size_t n = 0; n < 6; ++n) {
        page.add("h" + std::to_string(n + 1), "text", "StaticText", "text",
                 fontStyle(nth(faces, n + 2), nth(headingSizes, n)) +
                     "color:" + nth(textColors, n) + ";",
                 "Quarterly prices");
    }
    for (std::size_t n = 0; n < 4; ++n) {
        page.add("h2", "heading", "Heading", "edge",
                 fontStyle(nth(faces, n), nth(headingSizes, n + 2)) +
                     surfaceStyle(nth(colorPairs, n + 1), 0) + "width:240px;line-height:48px;",
                 "Delivery");
    }
    for (std::size_t n = 0; n < 10; ++n) {
        page.add("p", "text", "StaticText", "text",
                 fontStyle(nth(faces, n), nth(fontSizes, n)) + "color:" + nth(textColors, n + 1) +
                     ";line-height:" + (n % 2 == 1 ? "1.5" : "normal") + ";",
                 "Costs are shown without tax");
    }
    for (std::size_t n = 0; n < 6; ++n) {
        page.add("a href=#", "text", "StaticText", "text",
                 fontStyle(nth(faces, n + 5), nth(fontSizes, n + 2)) +
                     "color:" + nth(textColors, n) + ";",
                 "Read the terms");
    }
}

void addLists(PageWriter& page) {
    struct List {
        bool vertical;
        int items;
        int gap;    ///< pixels
        int length; ///< of an item along the list, in pixels
    };
    constexpr std::array<List, 8> lists = {{{true, 4, 8, 24},
                                            {true, 3, 0, 32},
                                            {true, 6, 4, 18},
                                            {true, 5, 12, 20},
                                            {false, 4, 16, 72},
                                            {false, 3, 24, 64},
                                            {false, 5, 1, 48},
                                            {true, 2, 20, 40}}};
    for (const List& list : lists) {
        std::string items;
        for (int n = 0; n < list.items; ++n) {
            items += std::string("<li style=\"") +
                     (list.vertical ? "width:72px;height:" : "height:28px;width:") +
                     px(list.length) + "\">Item " + std::to_string(n + 1) + "</li>";
        }
        page.add("ul", "list", "List", "edge",
                 std::string("display:flex;flex-direction:") + (list.vertical ? "column" : "row") +
                     ";gap:" + px(list.gap) + ";",
                 items);
    }
}

void addCards(PageWriter& page) {
    constexpr std::array<int, 6> paddings = {16, 24, 12, 20, 32, 8};
    constexpr std::array<int, 6> gaps = {12, 8, 16, 4, 10, 6};
    for (std::size_t n = 0; n < 8; ++n) {
        std::string lines;
        for (std::size_t line = 0; line < 2 + n % 3; ++line) {
            lines += "<p style=\"width:120px;height:20px\">Line of a card</p>";
        }
        page.add("div role=group aria-label=Card", "group", "Group", "edge",
                 fontStyle(nth(faces, n), 13) +
                     surfaceStyle(nth(colorPairs, n), nth(radii, n + 1)) +
                     "display:flex;flex-direction:column;padding:" + px(nth(paddings, n)) +
                     ";gap:" + px(nth(gaps, n)) + ";",
                 lines);
    }
}

void addPictures(PageWriter& page) {
    struct Picture {
        int width;
        int height;
    };
    constexpr std::array<Picture, 6> pictures = {
        {{160, 90}, {80, 80}, {120, 80}, {96, 128}, {150, 64}, {60, 60}}};
    for (std::size_t n = 0; n < pictures.size(); ++n) {
        const Picture& picture = pictures[n];
        const std::string fill = std::string(nth(colorPairs, n).fill).replace(0, 1, "%23");
        page.add("img alt=Cover src=\"data:image/svg+xml,<svg xmlns='http://www.w3.org/2000/svg' "
                 "width='10' height='10'><rect width='10' height='10' fill='" +
                     fill + "'/></svg>\"",
                 "picture", "Image", "middle",
                 std::string("object-fit:fill;background:") + nth(colorPairs, n).fill +
                     ";width:" + px(picture.width) + ";height:" + px(picture.height) +
                     ";border-radius:" + px(nth(radii, n + 1)) + ";",
                 "", false);
    }
}

constexpr const char* style = R"(<style>
  * { margin: 0; box-sizing: border-box; }
  body { background: white; padding: 16px; font: 13px 'DejaVu Sans'; }
  main > div { display: flex; flex-wrap: wrap; gap: 18px 28px; align-items: flex-start; margin-bottom: 18px; }
  button, input, textarea, select { border: 0; outline: 0; }
  ul { list-style: none; padding: 10px; background: #f3f4f6; }
  li { white-space: nowrap; font: 12px 'DejaVu Sans'; background: #dbeafe; }
</style>)";

} // namespace

std::string pageHtml() {
    PageWriter page;
    for (const auto& addGroup :
         {addButtons, addButtonsWithParts, addInputs, addTexts, addLists, addCards, addPictures}) {
        page.beginGroup();
        addGroup(page);
        page.endGroup();
    }
    return "<!doctype html><html lang=en><meta charset=utf-8><title>Accuracy</title>" +
           std::string(style) + "<main>" + page.text() + "</main><script>" + pageScript() +
           "</script>";
}

} // namespace lumetry::accuracy
