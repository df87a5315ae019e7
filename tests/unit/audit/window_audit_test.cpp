#include "audit/window_audit.h"

#include "platform/ax_value.h"
#include "support/fake_platform/fake_desktop.h"
#include "support/pictures/pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace lumetry {
namespace {

constexpr pid_t pid = 5;
constexpr std::uint32_t number = 31;
constexpr Rect bounds = {100, 100, 400, 300};

/// A window with a button, a text and a list that is scrolled.
class WindowAuditTest : public testing::Test {
protected:
    WindowAuditTest() {
        desktop.launch(pid, "Prices", "org.example.Prices");
        desktop.openWindow(pid, bounds);
        desktop.windowServer.windows->back().number = number;
        desktop.windowServer.names[number] = "Prices";
        Bitmap screen = evenBitmap(1440, 900, 0xFFFFFF);
        fillRect(screen, {120, 120, 80, 30}, 0x336699);
        desktop.screenCapture.paint(std::move(screen));
        window.set("AXTitle", "Prices").setFrame(bounds);
        button.setFrame({120, 120, 80, 30});
        label.setFrame({130, 125, 60, 20}).set("AXValue", "Save");
        icon.setFrame({122, 125, 8, 20});
        button.setChildren({&icon, &label});
        list.setFrame({120, 200, 300, 100});
        rows.reserve(5);
        for (int row = 0; row < 5; ++row) {
            rows.push_back(&desktop.accessibility.makeElement(pid, "AXStaticText"));
            rows.back()
                ->setFrame({120, 200.0 + 40 * row, 300, 40})
                .set("AXValue", "Row " + std::to_string(row));
        }
        list.setChildren(rows);
        window.setChildren({&list, &button});
        desktop.accessibility.application(pid).hitTest = [this](Point) { return hit; };
    }

    std::optional<WindowAudit> audit(std::size_t limit = 100) {
        return auditWindow(desktop.platform, desktop.state, {{pid, bounds}, number}, {limit, {}},
                           failure);
    }
    std::vector<std::string> headers(std::size_t limit = 100) {
        const auto result = audit(limit);
        const auto components = result ? result->components : std::vector<Component>();
        std::vector<std::string> lines;
        lines.reserve(components.size());
        for (const Component& component : components) {
            lines.push_back(component.header);
        }
        return lines;
    }

    FakeDesktop desktop;
    FakeElement& window = desktop.accessibility.makeElement(pid, "AXWindow");
    FakeElement& button = desktop.accessibility.makeElement(pid, "AXButton");
    FakeElement& icon = desktop.accessibility.makeElement(pid, "AXImage");
    FakeElement& label = desktop.accessibility.makeElement(pid, "AXStaticText");
    FakeElement& list = desktop.accessibility.makeElement(pid, "AXList");
    std::vector<FakeElement*> rows;
    FakeElement* hit = &label;
    AuditFailure failure = AuditFailure::none;
};

TEST_F(WindowAuditTest, MeasuresEachComponentOnceFrontToBack) {
    const auto result = audit();
    ASSERT_TRUE(result);
    EXPECT_EQ(headers(),
              (std::vector<std::string>{"Button · Save", "StaticText · Row 1", "StaticText · Row 0",
                                        "List", "Window · Prices"}));
    const Component& save = result->components.front();
    EXPECT_EQ(save.path, "Window · Prices / Button · Save");
    EXPECT_EQ(save.title, "Save");
    EXPECT_TRUE(save.showsText);
    EXPECT_EQ(save.measures.surface.fill, (Color{0x33 / 255.0, 0x66 / 255.0, 0x99 / 255.0, 1}));
    EXPECT_EQ(result->components[1].path, "Window · Prices / List / StaticText · Row 1");
    EXPECT_EQ(result->app, "org.example.Prices");
    EXPECT_EQ(result->title, "Prices");
    EXPECT_EQ(result->leftOut.clipped, 3U); // one of the rows in part
    EXPECT_EQ(result->elements, 7U);
    EXPECT_EQ(result->picture.width, 400);
}

TEST_F(WindowAuditTest, CapturesTheScreenOnce) {
    ASSERT_TRUE(audit());
    EXPECT_EQ(desktop.screenCapture.captures, 1);
    EXPECT_EQ(desktop.screenCapture.lastArea, bounds);
}

TEST_F(WindowAuditTest, LeavesOutWhatIsHiddenCoveredOrBeyondTheLimit) {
    button.set("AXHidden", AXValue(true));
    WindowInfo other;
    other.bounds = Rect{100, 190, 400, 60}; // over the first row
    desktop.windowServer.windows->insert(desktop.windowServer.windows->begin(), other);
    const auto result = audit(2);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->leftOut.hidden, 1U);
    EXPECT_EQ(result->leftOut.covered, 2U); // the second row in part
    EXPECT_EQ(result->leftOut.beyondLimit, 0U);
    EXPECT_EQ(headers(1), std::vector<std::string>{"List"});
}

TEST_F(WindowAuditTest, TellsComponentsOfOneNameApartFromTheTop) {
    rows[0]->set("AXValue", "Row");
    rows[1]->set("AXValue", "Row");
    const auto result = audit();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->components[1].path, "Window · Prices / List / StaticText · Row #2");
    EXPECT_EQ(result->components[2].path, "Window · Prices / List / StaticText · Row #1");
}

TEST_F(WindowAuditTest, TakesLabelsOfOtherElementsForTitles) {
    FakeElement& field = desktop.accessibility.makeElement(pid, "AXTextField");
    field.setFrame({120, 160, 80, 30}).set("AXValue", "typed");
    window.setChildren({&field});
    EXPECT_EQ(audit()->components.front().title, "");
    field.set("AXTitleUIElement", AXValue(label.handle()));
    EXPECT_EQ(audit()->components.front().title, "Save");
}

TEST_F(WindowAuditTest, WithstandsLyingTrees) {
    rows[0]->set("AXChildren",
                 std::vector<AXUIElement>{rows[0]->handle(), list.handle(), window.handle()});
    rows[1]->set("AXChildren", std::vector<AXUIElement>{button.handle(), button.handle()});
    ASSERT_TRUE(audit());
    EXPECT_EQ(std::ranges::count(headers(), "Button · Save"), 1);
}

TEST_F(WindowAuditTest, TakesATextInATextAsOne) {
    FakeElement& inner = desktop.accessibility.makeElement(pid, "AXStaticText");
    inner.setFrame({120, 200, 200, 40}).set("AXValue", "Row 0");
    rows[0]->set("AXRole", "AXLink").setChildren({&inner});
    EXPECT_EQ(std::ranges::count(headers(), "Link · Row 0"), 1);
    EXPECT_EQ(std::ranges::count(headers(), "StaticText · Row 0"), 0);
    FakeElement& other = desktop.accessibility.makeElement(pid, "AXStaticText");
    other.setFrame({320, 200, 100, 40}).set("AXValue", "more");
    rows[0]->setChildren({&inner, &other});
    EXPECT_EQ(std::ranges::count(headers(), "StaticText · Row 0"), 1);
    EXPECT_EQ(std::ranges::count(headers(), "Link · Row 0"), 0);
}

TEST_F(WindowAuditTest, BelievesAToldColourWhereThePixelsBearItOut) {
    const auto tell = [this](const Color& color) {
        AXDictionary attributes = {{"AXForegroundColor", AXValue(color)}};
        label.set("AXNumberOfCharacters", AXValue(std::int64_t{4}));
        label.parameterizedAttributes.insert_or_assign(
            "AXAttributedStringForRange",
            AXValue(std::make_shared<const AXAttributedString>(AXAttributedString{
                "S", {{{0, 1}, std::make_shared<const AXDictionary>(attributes)}}})));
    };
    Bitmap screen = evenBitmap(1440, 900, 0xFFFFFF);
    fillRect(screen, {120, 120, 80, 30}, 0x336699);
    drawStrokes(screen, {132, 128, 50, 12}, 0x5580AA);
    desktop.screenCapture.paint(std::move(screen));
    constexpr Color pale = {0x55 / 255.0, 0x80 / 255.0, 0xAA / 255.0, 1};
    tell(pale);
    EXPECT_EQ(audit()->components.front().textColor, pale);
    EXPECT_FALSE(audit()->components.front().textColorIsEstimated);
    tell({1, 1, 1, 1}); // it is transparent
    EXPECT_EQ(audit()->components.front().textColor, pale);
    EXPECT_TRUE(audit()->components.front().textColorIsEstimated);
    hit = &list; // it is covered by something else of the window
    EXPECT_EQ(audit()->leftOut.covered, 1U);
    EXPECT_EQ(std::ranges::count(headers(), "Button · Save"), 0);
}

TEST_F(WindowAuditTest, IsNoAuditWhenAnswersAreMissingOrAPageIsLoading) {
    const AuditTarget target = {{pid, bounds}, number};
    EXPECT_FALSE(auditWindow(
        desktop.platform, desktop.state, target,
        {100, [this](std::size_t done,
                     std::size_t) { desktop.accessibility.silences += done > 0 ? 1 : 0; }},
        failure));
    EXPECT_EQ(failure, AuditFailure::noAnswer);
    list.set("AXElementBusy", AXValue(true));
    EXPECT_FALSE(audit());
    EXPECT_EQ(failure, AuditFailure::unfinished);
    desktop.screenCapture.refused = true;
    EXPECT_FALSE(audit());
    EXPECT_EQ(failure, AuditFailure::noPicture);
}

TEST_F(WindowAuditTest, IsOfTheWindowAndNotOfADialogOverIt) {
    FakeElement& dialog = desktop.accessibility.makeElement(pid, "AXWindow");
    dialog.setFrame({250, 200, 100, 100});
    WindowInfo above;
    above.ownerPID = pid;
    above.bounds = Rect{250, 200, 100, 100};
    desktop.windowServer.windows->insert(desktop.windowServer.windows->begin(), above);
    desktop.accessibility.application(pid).hitTest = [&](Point at) {
        return above.bounds->contains(at) ? &dialog : &label;
    };
    EXPECT_EQ(std::ranges::count(headers(), "Button · Save"), 1);
}

TEST_F(WindowAuditTest, MeasuresOnlyThePageOfABrowser) {
    desktop.launch(pid, "Firefox", "org.mozilla.firefox");
    list.set("AXRole", "AXWebArea");
    EXPECT_EQ(headers(),
              (std::vector<std::string>{"StaticText · Row 1", "StaticText · Row 0", "WebArea"}));
    EXPECT_FALSE(audit()->components.front().measures.surface.fill == std::nullopt);
}

TEST_F(WindowAuditTest, SaysWhyThereIsNone) {
    window.setChildren({});
    hit = &window;
    EXPECT_FALSE(audit());
    EXPECT_EQ(failure, AuditFailure::noTree);
    hit = nullptr;
    EXPECT_FALSE(audit());
    EXPECT_EQ(failure, AuditFailure::noTree);
    hit = &label;
    window.setChildren({&button});
    button.set("AXHidden", AXValue(true));
    EXPECT_FALSE(audit());
    EXPECT_EQ(failure, AuditFailure::nothing);
    desktop.windowServer.windows->clear();
    EXPECT_FALSE(audit());
    EXPECT_EQ(failure, AuditFailure::ended);
}

TEST_F(WindowAuditTest, BeginsAgainWhenWindowsMove) {
    int moves = 0;
    const auto options = [&](int most) {
        moves = most;
        return AuditOptions{100, [this, &moves](std::size_t done, std::size_t) {
                                if (done == 0 && moves-- > 0) {
                                    desktop.windowServer.windows->back().bounds->x += 1;
                                }
                            }};
    };
    const AuditTarget target = {{pid, bounds}, number};
    const auto moved = auditWindow(desktop.platform, desktop.state, target, options(1), failure);
    ASSERT_TRUE(moved);
    EXPECT_EQ(moved->window.x, bounds.x + 1);
    EXPECT_FALSE(auditWindow(desktop.platform, desktop.state, target, options(100), failure));
    EXPECT_EQ(failure, AuditFailure::changed);
}

} // namespace
} // namespace lumetry
