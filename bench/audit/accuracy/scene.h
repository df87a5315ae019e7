#pragma once

#include "base/geometry.h"

#include <nlohmann/json.hpp>

#include <set>
#include <string>
#include <vector>

namespace lumetry::auditing {

using Json = nlohmann::json;

/// One thing to be audited, with what is wrong with it.
struct Item {
    std::string what;            ///< in words, for the report
    Rect box;                    ///< points of the window, or of the page
    std::set<std::string> wrong; ///< rules that it breaks
    std::string html;            ///< on a page
    Json widget;                 ///< in a window
    /// The application tells of it in steps that are too coarse for the rules.
    bool coarselyTold = false;
};

/// What one window or page holds, arranged so that every finding within an item's box is about it.
struct Scene {
    std::string name;
    std::vector<Item> items;
    std::set<std::string> rules; ///< that are judged here
    /// What is wrong with all of it together, such as "font sizes".
    std::set<std::string> wrong;
};

/// @{ All scenes of a page in Chromium, and of a window of GTK 3.
[[nodiscard]] std::vector<Scene> pageScenes();
[[nodiscard]] std::vector<Scene> windowScenes();
/// @}

/// @{ Of both.
struct TextCase {
    std::string what;
    int size = 14;
    bool bold = false;
    unsigned color = 0;
    unsigned fill = 0xFFFFFF;
    bool lacksContrast = false;
};
/// Texts on both sides of the thresholds, of all sizes that matter.
[[nodiscard]] std::vector<TextCase> contrastCases();

/// Controls in a row, the first at the origin.
struct TargetCase {
    std::string what;
    struct Target {
        Rect box;
        bool tooSmall = false;
    };
    std::vector<Target> targets;
};
[[nodiscard]] std::vector<TargetCase> targetCases();

/// Controls in a row whose heights differ.
struct HeightCase {
    std::string what;
    std::vector<int> heights;
    std::set<std::size_t> odd; ///< which of them differ a little from their left neighbours
};
[[nodiscard]] std::vector<HeightCase> heightCases();

/// A fill that two things have and a third that has nearly or not at all the same.
struct FillCase {
    std::string what;
    unsigned usual = 0;
    unsigned other = 0;
    bool nearlyEqual = false;
};
[[nodiscard]] std::vector<FillCase> fillCases();
/// @}

} // namespace lumetry::auditing
