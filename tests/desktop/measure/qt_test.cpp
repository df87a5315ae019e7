#include "measured_desktop.h"

#include "rig/desktop_windows.h"
#include "rig/processes/wait_until.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string_view>
#include <vector>

namespace lumetry::desktop {
namespace {

Json lastLine(const std::string& output) {
    Json last;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line) && !lines.eof();) {
        last = Json::parse(line);
    }
    return last;
}

/// What lumetry_qt_form says of its widgets, with its window at the top-left.
class QtForm {
public:
    explicit QtForm(PrivateDesktop& desktop) : process_(desktop.start({LUMETRY_QT_FORM})) {
        constexpr double margin = 40;
        const auto window = waitForWindow(desktop.server(), hasTitle("Qt form"));
        placeWindow(desktop.server(), window.id,
                    {margin, margin, window.bounds.width, window.bounds.height});
        requireUntil("the form to be in its place", [&] {
            truth_ = lastLine(process_.standardOutput());
            return !truth_.is_null() && truth_["form"]["x"] == margin &&
                   truth_["form"]["y"] == margin;
        });
        (void)AccessibleTree(desktop.accessibilityBusAddress())
            .waitFor("lumetry_qt_form", "push button", "Express");
    }

    /// Left, top, width and height.
    [[nodiscard]] Json box(const std::string& name) const {
        const Json& widget = truth_.at(name);
        return Json::array({widget["x"], widget["y"], widget["width"], widget["height"]});
    }
    [[nodiscard]] std::string font(const std::string& name) const {
        const Json& widget = truth_.at(name);
        return widget["family"].get<std::string>() + " · " + widget["pixels"].dump() + "px · " +
               (widget["weight"] == 700 ? "bold" : "regular");
    }
    [[nodiscard]] double number(const std::string& name, const char* of) const {
        return truth_.at(name).at(of);
    }
    [[nodiscard]] Point middleOf(const std::string& name) const {
        return {number(name, "x") + number(name, "width") / 2,
                number(name, "y") + number(name, "height") / 2};
    }
    /// As the row says it, of one whose widgets stand in a row from the first to the last.
    [[nodiscard]] std::string paddingOf(const std::string& name, const std::string& first,
                                        const std::string& last) const {
        const auto end = [this](const std::string& of, const char* start, const char* length) {
            return number(of, start) + number(of, length);
        };
        std::string text;
        for (const double side : {number(first, "y") - number(name, "y"),
                                  end(name, "x", "width") - end(last, "x", "width"),
                                  end(name, "y", "height") - end(last, "y", "height"),
                                  number(first, "x") - number(name, "x")}) {
            text += (text.empty() ? "" : " ") + std::to_string(std::lround(side)) + "px";
        }
        return text;
    }
    /// Near the bottom right corner, where there is nothing inside of it.
    [[nodiscard]] Point cornerOf(const std::string& name) const {
        constexpr double distance = 8;
        return {number(name, "x") + number(name, "width") - distance,
                number(name, "y") + number(name, "height") - distance};
    }

private:
    ChildProcess process_;
    Json truth_;
};

TEST(MeasureQt, SaysOfItsWidgetsWhatTheyAreAndWhere) {
    MeasuredDesktop measured;
    const QtForm form(measured.desktop);
    struct Widget {
        const char* name;
        const char* header;
    };
    const std::vector<Widget> widgets = {
        {"label", "StaticText · Quarterly prices"}, {"Express", "Button · Express"},
        {"line", "TextField · Ada Lovelace"},       {"note", "TextArea · Two lines\nof a note"},
        {"check", "CheckBox · Gift wrap"},          {"choice", "PopUpButton · Monthly"},
    };
    for (const auto& [name, header] : widgets) {
        const Json json = measured.measureAt(form.middleOf(name));
        EXPECT_EQ(json["header"], header);
        EXPECT_EQ(json["box"], form.box(name)) << name;
        // Qt tells how a text is set only of those that may be set in many ways.
        const bool isRichText = std::string_view(name) == "note";
        EXPECT_EQ(rowValue(json, "font"),
                  isRichText ? std::optional(form.font(name)) : std::nullopt);
    }

    const Json list = measured.measureAt(form.cornerOf("list"));
    EXPECT_EQ(list["header"], "List");
    EXPECT_EQ(list["box"], form.box("list"));
    EXPECT_EQ(rowValue(list, "items"), "4");
    EXPECT_EQ(rowValue(list, "row height"), "26px");
    EXPECT_EQ(rowValue(list, "gap"), "6px");

    const Json group = measured.measureAt(form.cornerOf("group"));
    EXPECT_EQ(group["header"], "Group · Delivery");
    EXPECT_EQ(group["box"], form.box("group"));
    EXPECT_EQ(rowValue(group, "gap"), "12px");
    EXPECT_EQ(rowValue(group, "padding"), form.paddingOf("group", "Standard", "Pick up"));
}

} // namespace
} // namespace lumetry::desktop
