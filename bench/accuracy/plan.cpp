#include "plan.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <random>
#include <string_view>
#include <utility>

namespace lumetry::accuracy {
namespace {

struct Face {
    const char* family;
    const char* weight;
};

constexpr std::array<Face, 11> faces = {{{"Inter", "400"},
                                         {"DejaVu Sans", "400"},
                                         {"Inter", "600"},
                                         {"DejaVu Serif", "400"},
                                         {"Inter", "500"},
                                         {"DejaVu Sans Mono", "400"},
                                         {"Inter", "700"},
                                         {"DejaVu Serif", "700"},
                                         {"Inter", "300"},
                                         {"DejaVu Sans", "700"},
                                         {"Inter", "900"}}};

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

constexpr std::array<const char*, 6> inks = {"#111827", "#1d4ed8", "#b91c1c",
                                             "#166534", "#6d28d9", "#374151"};
constexpr std::array<const char*, 8> sizes = {"11", "12", "13", "14", "15", "16", "18", "20"};
constexpr std::array<const char*, 8> radii = {"0", "4", "6", "8", "10", "12", "14", "0"};
constexpr std::array<const char*, 6> paddings = {"8", "12", "16", "20", "24", "10"};
constexpr std::array<const char*, 6> gaps = {"4", "6", "8", "10", "12", "16"};
constexpr std::array<const char*, 8> words = {"Save",    "Cancel", "Buy now", "Continue",
                                              "Sign in", "Delete", "Share",   "Download"};

class Chance {
public:
    explicit Chance(unsigned seed) : engine_(seed) {}

    [[nodiscard]] int upTo(int largest) {
        return std::uniform_int_distribution<int>(0, largest)(engine_);
    }
    template<class Values>
    [[nodiscard]] const auto& of(const Values& values) {
        return values[static_cast<std::size_t>(upTo(static_cast<int>(values.size()) - 1))];
    }
    void shuffle(std::vector<std::pair<Planned, int>>& elements) {
        std::ranges::shuffle(elements, engine_);
    }

private:
    std::mt19937 engine_;
};

void addFace(Planned& element, Chance& chance) {
    const Face& face = chance.of(faces);
    element.insert({{"family", face.family}, {"weight", face.weight}, {"size", chance.of(sizes)}});
}

Planned text(Chance& chance) {
    Planned element = {
        {"color", chance.of(inks)}, {"fill", "#ffffff"}, {"text", "Costs without tax"}};
    addFace(element, chance);
    return element;
}

Planned surface(Chance& chance) {
    const Colors& colors = chance.of(colorPairs);
    return {{"fill", colors.fill}, {"color", colors.text}, {"radius", chance.of(radii)}};
}

Planned button(Chance& chance) {
    Planned element = surface(chance);
    element.insert({{"padding", chance.of(paddings)}, {"text", chance.of(words)}});
    addFace(element, chance);
    return element;
}

Planned field(Chance& chance) {
    Planned element = surface(chance);
    element.insert({{"padding", "8"}, {"width", "200"}, {"text", "Ada Lovelace"}});
    addFace(element, chance);
    return element;
}

Planned area(Chance& chance) {
    Planned element = field(chance);
    element["text"] = "Two lines of a note that is longer than its field is wide";
    element["height"] = "80";
    return element;
}

Planned choice(Chance& chance) {
    return {{"text", chance.of(words)}};
}

/// One or none of the items is there without being shown.
void addItems(Planned& element, Chance& chance, int count, bool hides) {
    element["items"] = std::to_string(count);
    element["hidden"] = std::to_string(hides ? chance.upTo(count - 1) : -1);
}

Planned list(Chance& chance, bool hides) {
    Planned element;
    addItems(element, chance, 3 + chance.upTo(2), hides);
    return element;
}

Planned box(Chance& chance, bool hides) {
    Planned element = surface(chance);
    element.insert({{"padding", chance.of(paddings)}, {"gap", chance.of(gaps)}});
    addItems(element, chance, 3 + (hides ? 1 : 0), hides);
    return element;
}

Planned table(Chance& chance) {
    Planned element = text(chance);
    element.insert({{"rows", "5"}, {"columns", "3"}});
    // Small enough for its place where a toolkit scales nothing but fonts.
    element["size"] = chance.upTo(1) == 0 ? "11" : "12";
    return element;
}

Planned picture(Chance& chance) {
    constexpr std::array<std::array<const char*, 2>, 5> pictureSizes = {
        {{"160", "90"}, {"80", "80"}, {"120", "80"}, {"96", "64"}, {"150", "64"}}};
    const auto& size = chance.of(pictureSizes);
    return {{"width", size[0]}, {"height", size[1]}, {"fill", chance.of(colorPairs).fill}};
}

struct Recipe {
    const char* what;
    int count;
    int height; ///< more than it takes up, in points
    Planned (*style)(Chance&);
};

constexpr int columns = 4;
constexpr int columnWidth = 310;

constexpr std::array recipes = std::to_array<Recipe>({
    {"label", 8, 36, text},
    {"heading", 2, 40, text},
    {"link", 1, 36, text},
    {"button", 4, 78, button},
    {"parts", 1, 78, button},
    {"entry", 2, 50, field},
    {"area", 1, 90, area},
    {"check", 2, 34, choice},
    {"radio", 2, 34, choice},
    {"spin", 1, 50, field},
    {"popup", 1, 50, field},
    {"combo", 1, 50, field},
    {"menubar", 1, 40, choice},
    {"list", 1, 190, [](Chance& chance) { return list(chance, false); }},
    {"list", 1, 190, [](Chance& chance) { return list(chance, true); }},
    {"box", 2, 160, [](Chance& chance) { return box(chance, false); }},
    {"box", 1, 160, [](Chance& chance) { return box(chance, true); }},
    {"row", 1, 80, [](Chance& chance) { return box(chance, false); }},
    {"row", 1, 80, [](Chance& chance) { return box(chance, true); }},
    {"panel", 1, 160, [](Chance& chance) { return box(chance, false); }},
    {"table", 1, 214, table},
    {"image", 2, 96, picture},
});

} // namespace

std::vector<Planned> makePlan(unsigned seed) {
    Chance chance(seed);
    std::map<std::string_view, int> numbers;
    std::vector<std::pair<Planned, int>> elements; // with their heights
    for (const Recipe& recipe : recipes) {
        for (int n = 0; n < recipe.count; ++n) {
            Planned element = recipe.style(chance);
            element["what"] = recipe.what;
            element["id"] = std::string(recipe.what) + "-" + std::to_string(++numbers[recipe.what]);
            elements.emplace_back(std::move(element), recipe.height);
        }
    }
    chance.shuffle(elements);
    std::array<int, columns> ends{};
    std::vector<Planned> plan;
    for (auto& [element, height] : elements) {
        int& end = *std::ranges::min_element(ends);
        const auto column = static_cast<int>(&end - ends.data());
        element["x"] = std::to_string(column * columnWidth + 10 + chance.upTo(30));
        element["y"] = std::to_string(end + 6 + chance.upTo(8));
        end += height + 14;
        plan.push_back(std::move(element));
    }
    return plan;
}

std::string planText(const std::vector<Planned>& plan) {
    std::string text;
    for (const Planned& element : plan) {
        for (const auto& [name, value] : element) {
            text.append(name).append("=").append(value).append("\t");
        }
        text.back() = '\n';
    }
    return text;
}

} // namespace lumetry::accuracy
