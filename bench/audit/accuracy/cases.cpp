#include "scene.h"
#include "wcag.h"

#include <array>
#include <cstdio>
#include <utility>

namespace lumetry::auditing {
namespace {

std::string described(const TextCase& text) {
    std::array<char, 96> words{};
    std::snprintf(words.data(), words.size(), "%s on %s, %.3f:1, %dpx%s", hexOf(text.color).c_str(),
                  hexOf(text.fill).c_str(), contrastOf(text.color, text.fill), text.size,
                  text.bold ? " bold" : "");
    return words.data();
}

} // namespace

std::vector<TextCase> contrastCases() {
    struct Kind {
        int size;
        bool bold;
        double wanted;
    };
    // Large is 24px, or 18.66px and bold.
    constexpr auto kinds = std::to_array<Kind>({{14, false, 4.5},
                                                {14, true, 4.5},
                                                {18, true, 4.5},
                                                {19, true, 3},
                                                {23, false, 4.5},
                                                {24, false, 3}});
    constexpr auto grounds = std::to_array<std::pair<Rgb, Rgb>>({{0xFFFFFF, 0x808080},
                                                                 {0xFFFFFF, 0xE11D48},
                                                                 {0xF3F4F6, 0x2563EB},
                                                                 {0xFDE68A, 0xB45309},
                                                                 {0x111827, 0x6B7280},
                                                                 {0x1E3A8A, 0x38BDF8},
                                                                 {0x14532D, 0x86EFAC}});
    std::vector<TextCase> cases;
    for (const auto& [fill, tint] : grounds) {
        for (const Kind& kind : kinds) {
            const Border border = borderOf(kind.wanted, fill, tint);
            for (const Rgb color : {border.below, border.above}) {
                TextCase text = {"", kind.size, kind.bold, color, fill, color == border.below};
                text.what = described(text);
                cases.push_back(std::move(text));
            }
        }
    }
    return cases;
}

std::vector<TargetCase> targetCases() {
    using Target = TargetCase::Target;
    const auto pair = [](std::string what, double width, double height, double gap, bool tooSmall) {
        return TargetCase{
            std::move(what),
            {{{0, 0, width, height}, tooSmall}, {{width + gap, 0, width, height}, tooSmall}}};
    };
    return {
        {"20 × 20, alone", {Target{{0, 0, 20, 20}, false}}},
        {"12 × 12, alone", {Target{{0, 0, 12, 12}, false}}},
        pair("24 × 24, touching", 24, 24, 0, false),
        pair("23 × 24, touching", 23, 24, 0, true),
        pair("24 × 23, touching", 24, 23, 0, false), // 12 to the edge of the other
        pair("25 × 25, touching", 25, 25, 0, false),
        pair("20 × 20, 3 apart", 20, 20, 3, true),
        pair("20 × 20, 4 apart", 20, 20, 4, false),
        pair("16 × 16, 7 apart", 16, 16, 7, true),
        pair("16 × 16, 8 apart", 16, 16, 8, false),
        pair("40 × 20, touching", 40, 20, 0, false), // centres 40 apart
        {"40 × 20, on top of each other",
         {Target{{0, 0, 40, 20}, true}, Target{{0, 20, 40, 20}, true}}},
        {"40 × 20, 4 below each other",
         {Target{{0, 0, 40, 20}, false}, Target{{0, 24, 40, 20}, false}}},
        {"16 × 16, 3 beside a large one",
         {Target{{0, 0, 16, 16}, true}, Target{{19, 0, 40, 40}, false}}},
        {"16 × 16, 4 beside a large one",
         {Target{{0, 0, 16, 16}, false}, Target{{20, 0, 40, 40}, false}}},
        {"three of 20 × 20, 2 apart",
         {Target{{0, 0, 20, 20}, true}, Target{{22, 0, 20, 20}, true},
          Target{{44, 0, 20, 20}, true}}},
    };
}

std::vector<HeightCase> heightCases() {
    return {
        {"equal heights", {32, 32, 32}, {}},    {"one is 1 higher", {32, 32, 33}, {2}},
        {"one is 2 higher", {32, 34, 34}, {1}}, {"one is 2 lower", {36, 36, 34}, {2}},
        {"one is 1 lower", {40, 39, 39}, {1}},  {"8 apart", {32, 40, 40}, {}},
        {"6 apart", {32, 38, 38}, {}},
    };
}

std::vector<FillCase> fillCases() {
    return {
        {"1 in one channel", 0xF59E0B, 0xF59F0B, true},
        {"1 in each channel", 0x16A34A, 0x17A44B, true},
        {"2 of a dark one", 0x312E81, 0x333083, true},
        {"3 of a grey", 0xD1D5DB, 0xD4D8DE, true},
        {"another hue", 0xDB2777, 0x7C3AED, false},
        {"much lighter", 0x0E7490, 0x67E8F9, false},
        {"equal", 0x9A3412, 0x9A3412, false},
    };
}

} // namespace lumetry::auditing
