#include "atspi_test.h"

#include <atspi/atspi.h>

#include <array>
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
    return value->as<AXUIElement>() ? "element" : "something else";
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
             o.children = {{"", "/a"}, {"", "/b"}};
         },
         "2 elements"},
        {"AXChildren", [](auto&) {}, "0 elements"},
        {"AXChildren",
         [](auto& o) {
             o.answers["GetChildren"] =
                 references({{":1.9", "/a"}, {":1.9", "/org/a11y/atspi/null"}, {"", "/b"}});
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

TEST_F(Attributes, LeaveOutWhatAComboBoxWouldDropDown) {
    ScriptedObject comboBox = object("combo box", {0, 0, 90, 30}, {"/button", "/menu"});
    comboBox.role = ATSPI_ROLE_COMBO_BOX;
    const auto children =
        childrenOf(element(comboBox, {{"/button", object("button", {60, 0, 30, 30})},
                                      {"/menu", hidden(object("menu", {0, 0, 90, 9}))}}));
    ASSERT_EQ(children.size(), 1U);
    EXPECT_EQ(inWords(children.front().copyAttributeValue("AXTitle")), "\"button\"");
}

TEST_F(Attributes, AreAskedOnceWhileAnswersAreKept) {
    const auto window =
        element(object("window", {0, 0, 9, 9}, {"/a", "/b"}),
                {{"/a", object("a", {1, 2, 3, 4})}, {"/b", object("b", {5, 6, 7, 8})}});
    const auto children = childrenOf(window);
    constexpr std::array<std::string_view, 3> attributes = {"AXTitle", "AXPosition", "AXSize"};

    accessibility->prefetch(children, attributes);
    const auto before = accessibility->requests();
    Token answers = accessibility->keepAnswers();
    const auto waitsBefore = accessibility->waits();
    accessibility->prefetch(children, attributes);
    EXPECT_EQ(accessibility->requests() - before, 4) << "a name and a place of each";
    EXPECT_EQ(accessibility->waits() - waitsBefore, 1);
    { const Token inner = accessibility->keepAnswers(); }
    for (const AXUIElement& child : children) {
        (void)child.copyAttributeValue("AXSize");
        (void)child.copyAttributeValue("AXTitle");
        (void)child.copyAttributeValue("AXRole");
        (void)child.copyAttributeValue("AXRole");
    }
    EXPECT_EQ(accessibility->requests() - before, 8) << "a role and interfaces were not fetched";

    answers.reset();
    (void)children.front().copyAttributeValue("AXTitle");
    EXPECT_EQ(accessibility->requests() - before, 9);
}

} // namespace
} // namespace lumetry::test
