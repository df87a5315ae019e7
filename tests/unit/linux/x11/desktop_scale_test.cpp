#include "platform/linux/x11/windows/desktop_scale.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace lumetry::x11 {
namespace {

/// What a settings manager says: a colour and a text first, then whole numbers.
std::vector<std::uint8_t> settings(const std::vector<std::pair<std::string, std::int32_t>>& numbers,
                                   bool bigEndian = false) {
    std::vector<std::uint8_t> bytes = {static_cast<std::uint8_t>(bigEndian ? 1 : 0), 0, 0, 0};
    const auto put = [&](std::uint32_t number, unsigned size) {
        for (unsigned i = 0; i < size; ++i) {
            const unsigned place = bigEndian ? size - 1 - i : i;
            bytes.push_back(static_cast<std::uint8_t>(number >> (8 * place)));
        }
    };
    const auto text = [&](const std::string& characters) {
        bytes.insert(bytes.end(), characters.begin(), characters.end());
        bytes.resize((bytes.size() + 3) / 4 * 4);
    };
    const auto head = [&](std::uint8_t type, const std::string& name) {
        bytes.insert(bytes.end(), {type, 0});
        put(static_cast<std::uint32_t>(name.size()), 2);
        text(name);
        put(7, 4);
    };
    put(3, 4);
    put(static_cast<std::uint32_t>(numbers.size() + 2), 4);
    head(2, "Gtk/ColorOfSomething");
    bytes.resize(bytes.size() + 8);
    head(1, "Net/ThemeName");
    put(5, 4);
    text("Plain");
    for (const auto& [name, number] : numbers) {
        head(0, name);
        put(static_cast<std::uint32_t>(number), 4);
    }
    return bytes;
}

TEST(DeclaredScale, IsTheFirstDeclarationThatMeansSomething) {
    const auto dense = settings({{"Gdk/WindowScalingFactor", 1}, {"Xft/DPI", 144 * 1024}});
    auto cut = dense;
    cut.resize(cut.size() - 3);
    auto endless = settings({});
    endless[8] = 0xFF; // that many settings
    auto longName = settings({});
    longName[14] = 0xFF; // as long is the first name
    struct Case {
        const char* name;
        std::string resources;
        std::vector<std::uint8_t> settings;
        double expected;
    };
    const std::vector<Case> cases = {
        {"nothing", "", {}, 1},
        {"a resource", "*customization:\t-color\nXft.dpi:\t192\nXft.hinting: 1\n", {}, 2},
        {"the settings before it", "Xft.dpi: 192\n", dense, 1.5},
        {"the other byte order", "", settings({{"Xft/DPI", 120 * 1024}}, true), 1.25},
        {"the factor last", "", settings({{"Gdk/WindowScalingFactor", 3}}), 3},
        {"the resource before the factor", "Xft.dpi: 96",
         settings({{"Gdk/WindowScalingFactor", 2}}), 1},
        {"a resource of nothing", "Xft.dpi: 0\n", settings({{"Gdk/WindowScalingFactor", 2}}), 2},
        {"no number", "Xft.dpi: nan\n", {}, 1},
        {"a word", "Xft.dpi: large\n", {}, 1},
        {"a number with a word", "Xft.dpi: 192 or so\n", {}, 1},
        {"below nothing", "Xft.dpi: -96\n", settings({{"Xft/DPI", -1}}), 1},
        {"too much", "Xft.dpi: 96000\n", {}, 8},
        {"too little", "Xft.dpi: 10\n", {}, 0.5},
        {"settings that are cut off", "Xft.dpi: 192\n", cut, 2},
        {"more settings than there are", "Xft.dpi: 192\n", endless, 2},
        {"a name that is too long", "Xft.dpi: 192\n", longName, 2},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(declaredScale({each.resources, each.settings}), each.expected) << each.name;
    }
}

} // namespace
} // namespace lumetry::x11
