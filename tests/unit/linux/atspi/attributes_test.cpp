#include "atspi_test.h"

#include <atspi/atspi-constants.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

namespace lumetry::test {
namespace {

/// What an attribute is, in words.
std::string inWords(const std::optional<AXValue>& value) {
    if (!value) {
        return "absent";
    }
    if (const auto string = value->as<std::string>()) {
        return "\"" + *string + "\"";
    }
    if (const auto number = value->as<AXNumber>()) {
        return "number " + std::to_string(number->value);
    }
    if (const auto integer = value->as<std::int64_t>()) {
        return "integer " + std::to_string(*integer);
    }
    if (const auto point = value->as<Point>()) {
        return "point " + std::to_string(point->x) + " " + std::to_string(point->y);
    }
    if (const auto size = value->as<Size>()) {
        return "size " + std::to_string(size->width) + " " + std::to_string(size->height);
    }
    if (const auto elements = value->as<std::vector<AXUIElement>>()) {
        return std::to_string(elements->size()) + " elements";
    }
    if (const auto truth = value->as<bool>()) {
        return *truth ? "true" : "false";
    }
    return value->as<AXUIElement>() ? "element" : "something else";
}

constexpr std::uint64_t bit(AtspiStateType state) {
    return std::uint64_t{1} << static_cast<unsigned>(state);
}

class Attributes : public AtspiTest {
protected:
    /// The element that stands for the window of an application whose window is that object.
    [[nodiscard]] AXUIElement element(const ScriptedObject& scripted, ScriptedTree others = {}) {
        auto& application = start(windowWith(scripted, std::move(others)));
        return childrenOf(accessibility->createApplication(application.pid())).front();
    }

    [[nodiscard]] static std::vector<AXUIElement> childrenOf(const AXUIElement& parent) {
        return parent.copyAttributeValue("AXChildren")->as<std::vector<AXUIElement>>().value();
    }
};

TEST_F(Attributes, AreWhatTheObjectAnswers) {
    struct Case {
        std::string_view attribute;
        std::function<void(ScriptedObject&)> script;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {"AXRole", [](auto& o) { o.role = ATSPI_ROLE_PUSH_BUTTON; }, "\"AXButton\""},
        {"AXRole", [](auto& o) { o.answers["GetRole"] = text("push button"); }, "absent"},
        {"AXRole", [](auto&) {}, "absent"},
        {"AXTitle", [](auto& o) { o.name = "Größe"; }, "\"Größe\""},
        {"AXTitle", [](auto& o) { o.name = ""; }, "\"\""},
        {"AXTitle", [](auto& o) { o.answers["Name"] = unsignedNumber(7); }, "absent"},
        {"AXValue", [](auto& o) { o.textContent = "typed"; }, "\"typed\""},
        {"AXValue", [](auto& o) { o.value = 0.25; }, "number 0.250000"},
        {"AXValue", [](auto& o) { o.answers["CurrentValue"] = unsignedNumber(3); },
         "number 3.000000"},
        {"AXValue",
         [](auto& o) {
             o.textContent = "30 %";
             o.value = 30;
         },
         "\"30 %\""},
        // Sliders of the web have a text interface, too, with nothing in it.
        {"AXValue",
         [](auto& o) {
             o.textContent = "";
             o.value = 30;
         },
         "number 30.000000"},
        {"AXValue", [](auto& o) { o.textContent = ""; }, "\"\""},
        {"AXValue", [](auto& o) { o.textContent = "see \xEF\xBF\xBC here"; }, "\"see  here\""},
        {"AXValue", [](auto&) {}, "absent"},
        {"AXValue", [](auto& o) { o.textContent = std::string(5000, 'x'); },
         "\"" + std::string(1024, 'x') + "\""},
        {"AXNumberOfCharacters", [](auto& o) { o.textContent = "typed"; }, "integer 5"},
        // Nothing but pictures and paragraphs: no character can be measured.
        {"AXNumberOfCharacters",
         [](auto& o) {
             o.textContent = "\xEF\xBF\xBC\xEF\xBF\xBC";
             o.answers["CharacterCount"] = unsignedNumber(2);
         },
         "integer 0"},
        {"AXNumberOfCharacters", [](auto&) {}, "absent"},
        {"AXPosition",
         [](auto& o) {
             o.extents = {{-5, 7, 30, 40}};
         },
         "point -5.000000 7.000000"},
        {"AXSize",
         [](auto& o) {
             o.extents = {{-5, 7, 30, 40}};
         },
         "size 30.000000 40.000000"},
        {"AXSize", [](auto& o) { o.answers["GetExtents"] = text("30x40"); }, "absent"},
        {"AXSize",
         [](auto& o) {
             o.answers["GetExtents"] = reference({"a.b", "/c"});
         },
         "absent"},
        {"AXChildren",
         [](auto& o) {
             o.extents = {{0, 0, 9, 9}};
             o.children = {{"", "/window"}, {"", "/window"}};
         },
         "2 elements"},
        {"AXChildren", [](auto&) {}, "0 elements"},
        {"AXEnabled", [](auto& o) { o.states = bit(ATSPI_STATE_SENSITIVE); }, "true"},
        {"AXEnabled", [](auto& o) { o.states = bit(ATSPI_STATE_SHOWING); }, "false"},
        {"AXEnabled", [](auto& o) { o.answers["GetState"] = text("enabled"); }, "absent"},
        {"AXHidden",
         [](auto& o) {
             o.extents = {{0, 0, 9, 9}};
         },
         "false"},
        {"AXHidden",
         [](auto& o) {
             o.extents = {{0, 0, 9, 9}};
             o.states = bit(ATSPI_STATE_VISIBLE);
         },
         "true"},
        {"AXHidden",
         [](auto& o) {
             o.extents = {{std::numeric_limits<std::int32_t>::min(), 0, 9, 9}};
         },
         "true"},
        {"AXTitleUIElement",
         [](auto& o) {
             o.answers["GetRelationSet"] =
                 relations({{ATSPI_RELATION_CONTROLLED_BY, {"a.b", "/slider"}},
                            {ATSPI_RELATION_LABELLED_BY, {"a.b", "/label"}}});
         },
         "element"},
        {"AXTitleUIElement",
         [](auto& o) {
             o.answers["GetRelationSet"] =
                 relations({{ATSPI_RELATION_LABEL_FOR, {"a.b", "/field"}}});
         },
         "absent"},
        {"AXChildren",
         [](auto& o) {
             o.extents = {{0, 0, 9, 9}};
             o.children = {{"", "/org/a11y/atspi/null"}, {"", "/window"}};
         },
         "1 elements"},
        {"AXChildren", [](auto& o) { o.answers["GetChildren"] = text("none"); }, "absent"},
        {"AXChildren",
         [](auto& o) {
             o.answers["GetChildren"] = numbers({1, 2});
         },
         "absent"},
        {"AXChildren",
         [](auto& o) { o.answers["GetChildren"] = numberedReferences("/row/", 10'000); },
         "10000 elements"},
        {"AXNoSuchAttribute", [](auto& o) { o.name = "x"; }, "absent"},
    };
    for (const Case& each : cases) {
        ScriptedObject scripted;
        each.script(scripted);
        EXPECT_EQ(inWords(element(scripted).copyAttributeValue(each.attribute)), each.expected)
            << each.attribute;
    }
}

TEST_F(Attributes, LeadUpToTheApplicationAndNoFurther) {
    auto& application = start(windowWith(object("window", {0, 0, 9, 9}, {"/label"}),
                                         {{"/label", [] {
                                               ScriptedObject label = object("label", {1, 1, 2, 2});
                                               label.parent = Reference{"", "/window"};
                                               return label;
                                           }()}}));
    const auto root = accessibility->createApplication(application.pid());
    const auto window = childrenOf(root).front();
    const auto label = childrenOf(window).front();

    const auto parent = label.copyAttributeValue("AXParent")->as<AXUIElement>();
    ASSERT_TRUE(parent);
    EXPECT_EQ(*parent, window);
    EXPECT_NE(*parent, label);
    EXPECT_EQ(label.getPid(), application.pid());
    const auto top = window.copyAttributeValue("AXParent")->as<AXUIElement>();
    ASSERT_TRUE(top);
    EXPECT_EQ(inWords(top->copyAttributeValue("AXRole")), "\"AXApplication\"");
    EXPECT_EQ(inWords(top->copyAttributeValue("AXParent")), "absent");
}

TEST_F(Attributes, LeaveOutChildrenThatAreNotToBeSeen) {
    constexpr std::int32_t nowhere = std::numeric_limits<std::int32_t>::min();
    struct Case {
        const char* toolkit;
        std::uint32_t role;
        std::uint64_t shown;
        std::size_t expected;
        std::uint64_t mostRequests; ///< for its children and their places
    };
    for (const auto& [toolkit, role, shown, expected, mostRequests] : {
             Case{"other", ATSPI_ROLE_PANEL, ATSPI_STATE_SHOWING, 1, 10},
             Case{"GTK", ATSPI_ROLE_PANEL, ATSPI_STATE_VISIBLE, 1, 10},
             // These take its place from what is not to be seen: its states need no asking.
             Case{"gtk", ATSPI_ROLE_PANEL, ATSPI_STATE_SHOWING, 2, 6},
             Case{"Qt", ATSPI_ROLE_PANEL, ATSPI_STATE_SHOWING, 2, 6},
             // These list nothing of the kind, except of what would drop down.
             Case{"Chromium", ATSPI_ROLE_PANEL, ATSPI_STATE_SHOWING, 4, 14},
             Case{"Chromium", ATSPI_ROLE_COMBO_BOX, ATSPI_STATE_SHOWING, 1, 18},
         }) {
        accessibility = std::make_unique<AtspiAccessibility>(windows, loop);
        ScriptedObject window =
            object("window", {0, 0, 800, 600}, {"/no", "/old", "/flat", "/yes"});
        window.role = role;
        window.childAt = [](int, int) { return ""; };
        ScriptedTree others = {{"/no", hidden(object("no", {nowhere, nowhere, 1, 1}))},
                               {"/old", hidden(object("old", {0, 0, 9, 9}))},
                               {"/flat", hidden(object("flat", {0, 0, 0, 9}))},
                               {"/yes", object("yes", {10, 10, 30, 30})}};
        others["/yes"].states = std::uint64_t{1} << shown;
        const auto& application = start(windowWith(window, others, toolkit));
        windows.windows = {{1, application.pid(), {0, 0, 800, 600}, false, {0, 0, 800, 600}}};
        Token kept = accessibility->keepReplies();
        const auto element = hit(application, 1, 1);
        ASSERT_TRUE(element);
        auto waits = accessibility->waits();
        const auto requests = accessibility->requests();
        const auto children = childrenOf(*element);
        EXPECT_EQ(children.size(), expected) << toolkit << role;
        constexpr std::array<std::string_view, 2> places = {"AXPosition", "AXSize"};
        accessibility->prefetch(children, places);
        EXPECT_LE(accessibility->waits() - waits, 2) << toolkit << ": children, and their places";
        EXPECT_LE(accessibility->requests() - requests, mostRequests) << toolkit;
    }
}

/// A table of cells of 90 x 20, as if its first row were at that height.
ScriptedTree tableOf(std::array<std::int32_t, 2> told, int firstRow, int lastRow, int top,
                     const std::string& toolkit) {
    ScriptedObject table = object("table", {0, 0, 270, 600}, {"/header"});
    table.role = ATSPI_ROLE_TABLE;
    table.table = told;
    table.answers["GetChildren"] = numberedReferences("/", 30'000);
    ScriptedTree tree = {{"/header", object("header", {0, 0, 270, 20})}};
    for (int row = firstRow; row <= lastRow; ++row) {
        for (int column = 0; column < 3; ++column) {
            ScriptedObject cell = object("cell", {90 * column, top + 30 * row, 80, 20});
            cell.answers["GetIndexInParent"] =
                unsignedNumber(static_cast<std::uint32_t>(row * told[1] + column));
            table.children.push_back({"", cellPath(row, column)});
            tree[cellPath(row, column)] = std::move(cell);
        }
    }
    return windowWith(std::move(table), std::move(tree), toolkit);
}

TEST_F(Attributes, OfTablesMadeOfCellsAreTheirRows) {
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    struct Case {
        const char* name;
        ScriptedTree tree;
        std::string expected;
        std::uint64_t mostRequests;
    };
    const std::vector<Case> cases = {
        {"short", tableOf({5, 3}, 0, 4, 30, "gtk"), "5 elements", 30},
        {"of Qt", tableOf({5, 3}, 0, 4, 30, "Qt"), "5 elements", 30},
        {"partly in view", tableOf({40, 3}, 0, 39, -600, "other"), "20 elements", 190},
        {"long", tableOf({10'000, 3}, 4'990, 5'020, -150'000, "gtk"), "20 elements", 130},
        {"empty", tableOf({0, 3}, 0, -1, 0, "gtk"), "0 elements", 9},
        {"without a cell", tableOf({most, most}, 0, -1, 0, "gtk"), "0 elements", 140},
        {"of less than nothing", tableOf({-1, 3}, 0, 4, 30, "gtk"), "absent", 9},
        {"of another tale", tableOf({most, 1}, 0, 4, 30, "gtk"), "5 elements", 140},
        // These have rows of their own.
        {"of Chromium", tableOf({5, 3}, 0, 4, 30, "Chromium"), "30000 elements", 20},
    };
    for (const Case& each : cases) {
        accessibility = std::make_unique<AtspiAccessibility>(windows, loop);
        windows.windows.clear();
        const auto& application = start(each.tree);
        showWindow(application);
        const Token kept = accessibility->keepReplies();
        const auto table = hit(application, 269, 599);
        ASSERT_TRUE(table);
        const auto requests = accessibility->requests();
        const auto children = table->copyAttributeValue("AXChildren");
        EXPECT_EQ(inWords(children), each.expected) << each.name;
        EXPECT_LE(accessibility->requests() - requests, each.mostRequests) << each.name;
        const auto rows = children ? children->as<std::vector<AXUIElement>>().value()
                                   : std::vector<AXUIElement>();
        if (each.expected == "5 elements" && std::string_view(each.name) != "of another tale") {
            EXPECT_EQ(inWords(rows[1].copyAttributeValue("AXRole")), "\"AXRow\"");
            EXPECT_EQ(inWords(rows[1].copyAttributeValue("AXPosition")),
                      "point 0.000000 60.000000");
            EXPECT_EQ(inWords(rows[1].copyAttributeValue("AXSize")), "size 260.000000 20.000000");
            EXPECT_EQ(inWords(rows[1].copyAttributeValue("AXChildren")), "3 elements");
            EXPECT_EQ(rows[1].copyAttributeValue("AXParent")->as<AXUIElement>(), table);
        }
    }
}

ScriptedObject ofRole(std::uint32_t role, const std::string& parent,
                      std::vector<std::string> children = {}) {
    ScriptedObject made = object("object", {10, 10, 100, 100}, std::move(children));
    made.role = role;
    made.parent = Reference{"", parent};
    return made;
}

TEST_F(Attributes, SayWhatARoleIsByWhatIsAroundAndInIt) {
    struct Case {
        const char* toolkit;
        AtspiRole around;
        AtspiRole role;
        std::function<void(ScriptedObject&)> script;
        const char* expected;
    };
    const auto nothing = [](auto&) {};
    const auto withState = [](AtspiStateType state) {
        return [state](auto& o) { o.states |= std::uint64_t{1} << state; };
    };
    const auto editableText = [](auto& o) { o.isEditableText = true; };
    const auto withEntry = [](auto& o) { o.children = {{"", "/list"}, {"", "/entry"}}; };
    constexpr auto box = ATSPI_ROLE_FILLER;
    const std::vector<Case> cases = {
        {"Chromium", ATSPI_ROLE_SECTION, ATSPI_ROLE_DIALOG, nothing, "AXGroup"},
        {"Qt", box, ATSPI_ROLE_FRAME, nothing, "AXGroup"},
        {"gtk", ATSPI_ROLE_MENU_BAR, ATSPI_ROLE_MENU, nothing, "AXMenuBarItem"},
        {"Qt", ATSPI_ROLE_MENU_BAR, ATSPI_ROLE_MENU_ITEM, nothing, "AXMenuBarItem"},
        {"gtk", ATSPI_ROLE_MENU, ATSPI_ROLE_MENU, nothing, "AXMenuItem"},
        {"other", ATSPI_ROLE_POPUP_MENU, ATSPI_ROLE_MENU, nothing, "AXMenuItem"},
        {"gtk", box, ATSPI_ROLE_MENU, nothing, "AXMenu"},
        {"gtk", ATSPI_ROLE_MENU, ATSPI_ROLE_MENU_ITEM, nothing, "AXMenuItem"},
        {"gtk", box, ATSPI_ROLE_SPIN_BUTTON, editableText, "AXTextField"},
        {"other", box, ATSPI_ROLE_SPIN_BUTTON, nothing, "AXIncrementor"},
        // It says so of everything.
        {"Gecko", box, ATSPI_ROLE_SPIN_BUTTON, editableText, "AXIncrementor"},
        {"Gecko", box, ATSPI_ROLE_SPIN_BUTTON, withState(ATSPI_STATE_EDITABLE), "AXTextField"},
        {"gtk", box, ATSPI_ROLE_COMBO_BOX, nothing, "AXPopUpButton"},
        {"Qt", box, ATSPI_ROLE_COMBO_BOX, withEntry, "AXComboBox"},
        {"Chromium", box, ATSPI_ROLE_COMBO_BOX, withState(ATSPI_STATE_EDITABLE), "AXComboBox"},
        {"gtk", box, ATSPI_ROLE_TEXT, withState(ATSPI_STATE_MULTI_LINE), "AXTextArea"},
        {"Gecko", box, ATSPI_ROLE_ENTRY, nothing, "AXTextField"},
    };
    for (const auto& [toolkit, around, role, script, expected] : cases) {
        accessibility = std::make_unique<AtspiAccessibility>(windows, loop);
        windows.windows.clear();
        ScriptedObject asked = ofRole(role, "/around");
        asked.childAt = [](int, int) { return ""; };
        script(asked);
        const auto& application =
            start(windowWith(object("window", {0, 0, 800, 600}, {"/around"}),
                             {{"/around", ofRole(around, "/window", {"/asked"})},
                              {"/asked", asked},
                              {"/list", hidden(ofRole(ATSPI_ROLE_LIST, "/asked"))},
                              {"/entry", hidden(ofRole(ATSPI_ROLE_TEXT, "/asked"))}},
                             toolkit));
        showWindow(application);
        (void)hit(application, 50, 50);
        const Token kept = accessibility->keepReplies();
        const auto element = hit(application, 51, 51);
        ASSERT_TRUE(element);
        const auto waits = accessibility->waits();
        EXPECT_EQ(inWords(element->copyAttributeValue("AXRole")), '"' + std::string(expected) + '"')
            << role << " of " << toolkit;
        EXPECT_EQ(accessibility->waits() - waits, asked.children.empty() ? 0 : 1)
            << role << " of " << toolkit << ": only what is in it is not known near the last point";
    }
    ScriptedObject dialog = object("dialog", {0, 0, 800, 600});
    dialog.role = ATSPI_ROLE_DIALOG;
    EXPECT_EQ(inWords(element(dialog).copyAttributeValue("AXRole")), "\"AXWindow\"");
}

TEST_F(Attributes, AreAskedOnceWhileRepliesAreKept) {
    const auto window =
        element(object("window", {0, 0, 9, 9}, {"/a", "/b"}),
                {{"/a", object("a", {1, 2, 3, 4})}, {"/b", object("b", {5, 6, 7, 8})}});
    const auto children = childrenOf(window);
    constexpr std::array<std::string_view, 3> attributes = {"AXTitle", "AXPosition", "AXSize"};

    accessibility->prefetch(children, attributes);
    const auto before = accessibility->requests();
    Token kept = accessibility->keepReplies();
    const auto waitsBefore = accessibility->waits();
    accessibility->prefetch(children, attributes);
    EXPECT_EQ(accessibility->requests() - before, 4) << "a name and a place of each";
    EXPECT_EQ(accessibility->waits() - waitsBefore, 1);
    { const Token inner = accessibility->keepReplies(); }
    for (const AXUIElement& child : children) {
        (void)child.copyAttributeValue("AXSize");
        (void)child.copyAttributeValue("AXTitle");
        (void)child.copyAttributeValue("AXRole");
        (void)child.copyAttributeValue("AXRole");
    }
    EXPECT_EQ(accessibility->requests() - before, 8) << "a role and interfaces were not fetched";

    kept.reset();
    (void)children.front().copyAttributeValue("AXTitle");
    EXPECT_EQ(accessibility->requests() - before, 9);
}

} // namespace
} // namespace lumetry::test
