#include "atspi_test.h"

#include <atspi/atspi-constants.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::test {
namespace {

class TextLeaves : public AtspiTest {};

/// Text of which Gecko tells a place, but for which it has no object.
ScriptedObject withTextAt(ScriptedObject object, const std::string& content,
                          const std::array<std::int32_t, 4>& place) {
    object.textContent = content;
    object.answers["GetRangeExtents"] = [place](DBusMessageIter& reply) {
        for (const std::int32_t number : place) {
            dbus_message_iter_append_basic(&reply, DBUS_TYPE_INT32, &number);
        }
    };
    return object;
}

template<typename Kind>
std::optional<Kind> read(const std::optional<AXUIElement>& element, const char* attribute) {
    const auto value = element ? element->copyAttributeValue(attribute) : std::nullopt;
    return value ? value->as<Kind>() : std::nullopt;
}

TEST_F(TextLeaves, FindTextsOfGeckoThatHaveNoObject) {
    ScriptedObject button = object("Save", {50, 50, 200, 60});
    button.role = ATSPI_ROLE_PUSH_BUTTON;
    ScriptedObject field = object("Name", {50, 150, 200, 60});
    field.states |= std::uint64_t{1} << ATSPI_STATE_EDITABLE;
    ScriptedObject withIcon = object("Open", {50, 250, 200, 60}, {"/icon"});
    auto& application = start(
        windowWith(object("window", {0, 0, 800, 600}, {"/button", "/field", "/withIcon"}),
                   {{"/button", withTextAt(button, "Save", {90, 70, 120, 20})},
                    {"/field", withTextAt(field, "Ada", {90, 170, 60, 20})},
                    {"/withIcon", withTextAt(withIcon, "\xEF\xBF\xBC Open ", {120, 270, 60, 20})},
                    {"/icon", object("icon", {90, 270, 20, 20})}},
                   "Gecko"));
    showWindow(application);
    const auto text = hit(application, 100, 80);
    EXPECT_EQ(read<std::string>(text, "AXRole"), "AXStaticText");
    EXPECT_EQ(read<std::string>(text, "AXValue"), "Save");
    EXPECT_EQ(read<Point>(text, "AXPosition"), (Point{90, 70}));
    EXPECT_EQ(read<Size>(text, "AXSize"), (Size{120, 20}));
    const auto around = hit(application, 60, 80);
    EXPECT_EQ(read<std::string>(around, "AXRole"), "AXButton");
    EXPECT_EQ(read<AXUIElement>(text, "AXParent"), around);
    EXPECT_EQ(read<std::vector<AXUIElement>>(around, "AXChildren"), std::vector{*text});
    // What is typed over has room around it that the text does not tell.
    const auto input = hit(application, 100, 180);
    EXPECT_EQ(read<std::string>(input, "AXTitle"), "Name");
    EXPECT_EQ(read<std::vector<AXUIElement>>(input, "AXChildren"), std::vector<AXUIElement>());
    // Beside an icon only the text itself counts, in its order.
    const auto label = hit(application, 130, 280);
    EXPECT_EQ(read<std::string>(label, "AXValue"), "Open");
    const auto icon = hit(application, 100, 280);
    EXPECT_EQ(read<std::string>(icon, "AXTitle"), "icon");
    EXPECT_EQ(read<std::vector<AXUIElement>>(hit(application, 60, 280), "AXChildren"),
              (std::vector{*icon, *label}));
}

TEST_F(TextLeaves, AreFetchedTogetherWithChildren) {
    ScriptedObject button = object("Save", {50, 50, 200, 60});
    button.role = ATSPI_ROLE_PUSH_BUTTON;
    ScriptedObject other = object("Open", {50, 150, 200, 60});
    other.role = ATSPI_ROLE_PUSH_BUTTON;
    for (const char* const toolkit : {"Gecko", "gtk", "Chromium"}) {
        auto& application =
            start(windowWith(object("window", {0, 0, 800, 600}, {"/button", "/other"}),
                             {{"/button", withTextAt(button, "Save", {90, 70, 120, 20})},
                              {"/other", withTextAt(other, "Open", {90, 170, 120, 20})}},
                             toolkit));
        showWindow(application);
        std::vector<AXUIElement> buttons;
        for (const float y : {55.0F, 155.0F}) {
            const auto found = hit(application, 60, y);
            ASSERT_TRUE(found);
            buttons.push_back(*found);
        }
        const Token kept = accessibility->keepReplies();
        constexpr std::array<std::string_view, 1> role = {"AXRole"};
        accessibility->prefetch(buttons, role);
        accessibility->prefetchChildren(buttons);
        const auto before = accessibility->requests();
        for (const AXUIElement& each : buttons) {
            const auto texts = read<std::vector<AXUIElement>>(each, "AXChildren");
            ASSERT_EQ(texts.value_or(std::vector<AXUIElement>()).size(), 1U) << toolkit;
            EXPECT_EQ(read<Size>(texts->front(), "AXSize"), (Size{120, 20})) << toolkit;
            EXPECT_EQ(read<std::string>(texts->front(), "AXValue"),
                      each == buttons.front() ? "Save" : "Open")
                << toolkit;
        }
        EXPECT_EQ(accessibility->requests(), before) << toolkit;
    }
}

TEST_F(TextLeaves, FindTheTextsOfLeavesElsewhere) {
    struct Case {
        const char* toolkit;
        const char* application;
        int role;
        AtspiStateType state;
        bool isText; ///< of its own, inside of the object
    };
    for (const auto& [toolkit, name, role, state, isText] : {
             Case{"gtk", "a", ATSPI_ROLE_TABLE_CELL, ATSPI_STATE_SHOWING, true},
             Case{"gtk", "a", ATSPI_ROLE_LABEL, ATSPI_STATE_SHOWING, false},
             Case{"gtk", "a", ATSPI_ROLE_TABLE_CELL, ATSPI_STATE_EDITABLE, false},
             Case{"WebKitGTK", "a", ATSPI_ROLE_PARAGRAPH, ATSPI_STATE_SHOWING, true},
             // Its documents are edited, which makes no field of a paragraph.
             Case{"gtk", "soffice", ATSPI_ROLE_PARAGRAPH, ATSPI_STATE_EDITABLE, true},
         }) {
        accessibility = std::make_unique<AtspiAccessibility>(windows, loop);
        windows.windows.clear();
        ScriptedObject leaf = object("leaf", {50, 50, 200, 60});
        leaf.role = role;
        leaf.states |= std::uint64_t{1} << state;
        ScriptedTree tree =
            windowWith(object("window", {0, 0, 800, 600}, {"/leaf"}),
                       {{"/leaf", withTextAt(leaf, "Save", {90, 70, 120, 20})}}, toolkit);
        tree[rootPath].name = name;
        tree["/leaf"].lenientAboutText = std::string_view(name) == "a";
        auto& application = start(tree);
        showWindow(application);
        const auto found = hit(application, 100, 80);
        EXPECT_EQ(read<Size>(found, "AXSize"), isText ? (Size{120, 20}) : (Size{200, 60}))
            << toolkit << ' ' << name << ' ' << role;
        EXPECT_EQ(read<std::string>(found, "AXRole") == "AXStaticText",
                  isText || role == ATSPI_ROLE_LABEL);
        const auto children =
            read<std::vector<AXUIElement>>(hit(application, 60, 55), "AXChildren");
        EXPECT_EQ(children.value().size(), isText ? 1U : 0U);
    }
}

TEST_F(TextLeaves, FindOnlyWhatIsMeasuredOfAText) {
    const std::string placeholder = "\xEF\xBF\xBC";
    std::string children;
    std::string mixed;
    for (int child = 0; child < 1200; ++child) {
        children += placeholder;
        mixed += child < 65 ? "a" + placeholder : "";
    }
    struct Case {
        const char* name;
        int role;
        std::string text;
        std::string value; ///< empty where no text is to be hit
        std::int64_t length;
    };
    const std::vector<Case> cases = {
        {"an item's bullet", ATSPI_ROLE_LIST_ITEM, "\u2022 Größe", "Größe", 5},
        {"an item's number", ATSPI_ROLE_LIST_ITEM, "12. Pears", "Pears", 5},
        {"an item that is a number", ATSPI_ROLE_LIST_ITEM, "12.5", "12.5", 4},
        {"a number elsewhere", ATSPI_ROLE_PARAGRAPH, "12. May", "12. May", 7},
        {"a long text", ATSPI_ROLE_PARAGRAPH, std::string(1500, 'x'), std::string(1024, 'x'), 1500},
        {"what stands before many children", ATSPI_ROLE_SECTION, "Intro" + children, "Intro", 5},
        {"more pieces than are measured", ATSPI_ROLE_SECTION, mixed, "", 0},
        {"more than is looked through", ATSPI_ROLE_SECTION, std::string(10'001, 'x'), "", 0},
    };
    for (const Case& each : cases) {
        accessibility = std::make_unique<AtspiAccessibility>(windows, loop);
        windows.windows.clear();
        ScriptedObject object = test::object("around", {50, 50, 200, 60});
        object.role = each.role;
        auto& application = start(
            windowWith(test::object("window", {0, 0, 800, 600}, {"/object"}),
                       {{"/object", withTextAt(object, each.text, {90, 70, 120, 20})}}, "Gecko"));
        showWindow(application);
        const auto found = hit(application, 100, 80);
        if (each.value.empty()) {
            EXPECT_EQ(read<std::string>(found, "AXTitle"), "around") << each.name;
            continue;
        }
        EXPECT_EQ(read<std::string>(found, "AXRole"), "AXStaticText") << each.name;
        EXPECT_EQ(read<std::string>(found, "AXValue"), each.value) << each.name;
        EXPECT_EQ(read<std::int64_t>(found, "AXNumberOfCharacters"), each.length) << each.name;
        // Ranges count from where the piece begins in the whole text, and end with it.
        const auto lastOf = found->copyParameterizedAttributeValue("AXAttributedStringForRange",
                                                                   AXRange{each.length - 1, 9});
        ASSERT_TRUE(lastOf) << each.name;
        EXPECT_EQ((*lastOf->as<std::shared_ptr<const AXAttributedString>>())->text,
                  each.value.substr(each.value.size() - 1))
            << each.name;
    }
}

TEST_F(TextLeaves, WaitUntilChromiumTellsThePlacesOfTexts) {
    ScriptedObject button = object("Save", {50, 50, 200, 60});
    button.role = ATSPI_ROLE_PUSH_BUTTON;
    button.textContent = "Save";
    button.answers["GetRangeExtents"] = [asked = std::make_shared<int>(0)](DBusMessageIter& reply) {
        const bool ready = ++*asked > 3;
        for (const std::int32_t number : {90, 70, ready ? 120 : 0, ready ? 20 : 0}) {
            dbus_message_iter_append_basic(&reply, DBUS_TYPE_INT32, &number);
        }
    };
    auto& application = start(windowWith(object("window", {0, 0, 800, 600}, {"/button"}),
                                         {{"/button", button}}, "Chromium"));
    showWindow(application);
    EXPECT_EQ(read<Size>(hit(application, 100, 80), "AXSize"), (Size{120, 20}));
}

TEST_F(TextLeaves, FindTheOnlyTextOfAButtonInChromium) {
    ScriptedObject button = object("Save", {50, 50, 200, 60});
    button.role = ATSPI_ROLE_PUSH_BUTTON;
    ScriptedObject text = object("Save", {50, 150, 200, 60});
    text.role = ATSPI_ROLE_STATIC;
    ScriptedObject unplaced = object("One", {50, 250, 200, 60});
    ScriptedObject readOnly = object("Name", {50, 350, 200, 60});
    readOnly.role = ATSPI_ROLE_ENTRY;
    auto& application = start(windowWith(
        object("window", {0, 0, 800, 600}, {"/button", "/text", "/unplaced", "/readOnly"}),
        {{"/button", withTextAt(button, "Save", {90, 70, 120, 20})},
         {"/text", withTextAt(text, "Save", {50, 150, 200, 60})},
         {"/unplaced", withTextAt(unplaced, "One", {50, 250, 1, 20})},
         {"/readOnly", withTextAt(readOnly, "Ada", {50, 370, 60, 20})}},
        "Chromium"));
    showWindow(application);
    const auto label = hit(application, 100, 80);
    EXPECT_EQ(read<std::string>(label, "AXRole"), "AXStaticText");
    EXPECT_EQ(read<Size>(label, "AXSize"), (Size{120, 20}));
    for (const float y : {180.0F, 280.0F, 380.0F}) {
        const auto leaf = hit(application, 50, y);
        EXPECT_EQ(read<Size>(leaf, "AXSize"), (Size{200, 60}));
        EXPECT_EQ(read<std::vector<AXUIElement>>(leaf, "AXChildren"), std::vector<AXUIElement>());
    }
}

} // namespace
} // namespace lumetry::test
