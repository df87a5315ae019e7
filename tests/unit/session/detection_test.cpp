#include "session_test.h"

#include "session/detect_log.h"
#include "support/pictures/pictures.h"

#include <algorithm>
#include <string>
#include <vector>

namespace lumetry {
namespace {

constexpr std::uint32_t paper = 0xFFFFFF;
constexpr std::uint32_t blue = 0x1E90FF;

/// A window whose page is one frame, or has none, with a blue button painted on it.
class Detection : public SessionTest {
protected:
    static constexpr PixelRect paintedButton = {300, 250, 120, 32};
    /// The distances to the last pixel on either side: the pixel they start from is not counted.
    static constexpr Rect paintedFrame = {300, 250, 119, 31};
    static constexpr Point onPainted = {350, 260};

    Detection() {
        Bitmap screen = evenBitmap(1440, 900, paper);
        fillRect(screen, paintedButton, blue);
        desktop.screenCapture.paint(std::move(screen));
        desktop.defaults.values["lumetry.debug"] = true;
        desktop.pointAt(onDesktop);
        overlay->start();
    }

    [[nodiscard]] std::string logged() {
        return desktop.fileSystem.appended[std::string(DetectLog::url)];
    }
    /// The last line of the log, without its end.
    [[nodiscard]] std::string lastLine() {
        std::string text = logged();
        text.pop_back();
        return text.substr(text.rfind('\n') + 1);
    }
    void makeElectron() {
        desktop.launchElectron(pid, "Chat");
        desktop.state.electronPIDCache.clear();
        page.set("AXTitle", "Chat").setFrame(windowBounds);
        desktop.accessibility.application(pid).answerWith({&page});
    }

    FakeElement& page = desktop.accessibility.makeElement(pid, "AXWebArea");
    const GlanceRow blueRow = {"pixel", "#1E90FF", Color{30 / 255.0, 144 / 255.0, 1, 1}};
};

TEST_F(Detection, ReadsTheColourWhereNothingIs) {
    EXPECT_EQ(view().header, "color");
    EXPECT_EQ(view().rows, (std::vector<GlanceRow>{{"pixel", "#FFFFFF", white}}));
    EXPECT_EQ(logged(),
              "app=(none) electron=false path=desktop(win-nil) header=color box=- win=-\n");
    EXPECT_EQ(desktop.screenCapture.lastWindowNumber, window().number);
}

TEST_F(Detection, FindsTheBoxWhereNoElementAnswers) {
    hover({onWindow.x, onWindow.y});
    EXPECT_EQ(
        lastLine(),
        "app=com.example.notes electron=false path=AX-nil+pixel-nil header=- box=- win=600x400");
    desktop.accessibility.application(pid).answerWith({});
    hover(onPainted);
    EXPECT_EQ(view().header, "≈ element");
    EXPECT_EQ(view().targetRect, inView(paintedFrame));
    EXPECT_EQ(view().rows, (std::vector<GlanceRow>{{"size", "119 × 31", {}}, blueRow}));
    EXPECT_EQ(lastLine(), "app=com.example.notes electron=false path=pixel-only(AX-nil) "
                          "header=≈ element box=119x31 win=600x400");
    // Inside the box only the colour is read again, not the box.
    const int before = desktop.screenCapture.captures;
    hover({onPainted.x + 5, onPainted.y});
    EXPECT_EQ(desktop.screenCapture.captures, before + 1);
}

TEST_F(Detection, PrefersAFinerBoxToOneFrameForTheWholePage) {
    makeElectron();
    hover(onPainted);
    EXPECT_EQ(view().header, "≈ element");
    EXPECT_EQ(view().targetRect, inView(paintedFrame));
    EXPECT_EQ(lastLine(), "app=com.example.Chat electron=true path=coarse→pixel "
                          "header=≈ element box=119x31 win=600x400");
    hoverWithOption(onPainted);
    EXPECT_EQ(view().measureA, inView(paintedFrame)) << "a box can be measured from";
    desktop.pointer.modifiers = 0;
    // Where the pixels show no box, the page it is.
    hover(onWindow);
    EXPECT_EQ(view().header, "WebArea · Chat");
    EXPECT_EQ(lastLine(), "app=com.example.Chat electron=true path=AX-coarse-shown "
                          "header=WebArea · Chat box=600x400 win=600x400");
}

TEST_F(Detection, LogsEachChangeOnce) {
    const auto lines = [&] { return std::ranges::count(logged(), '\n'); };
    const auto before = lines();
    hover(onButton);
    hover({onButton.x + 1, onButton.y});
    EXPECT_EQ(lines(), before + 1);
    hover(onField);
    hover(onButton);
    EXPECT_EQ(lines(), before + 3);
    overlay->stop();
    overlay->start();
    EXPECT_EQ(lines(), before + 3) << "the same as before it was left";
}

TEST_F(Detection, TellsApplicationsAndPathsApart) {
    FakeElement& other = desktop.accessibility.makeElement(2, "AXButton");
    other.set("AXTitle", "Save").setFrame({720, 120, 80, 30});
    desktop.launch(2, "Mail", "com.example.mail");
    desktop.openWindow(2, {710, 100, 200, 400});
    desktop.accessibility.application(2).answerWith({&other});
    hover(onButton);
    hover({730, 125});
    EXPECT_EQ(lastLine(), "app=com.example.mail electron=false path=AX-real header=Button · Save "
                          "box=80x30 win=200x400");
    makeElectron();
    desktop.accessibility.application(pid).answerWith({});
    hover(onPainted);
    desktop.accessibility.application(pid).answerWith({&page});
    hover({onPainted.x + 1, onPainted.y});
    EXPECT_NE(lastLine().find("path=coarse→pixel header=≈ element"), std::string::npos);
}

TEST_F(Detection, KeepsARecordToOneLineAndSizesToWholePoints) {
    button.set("AXTitle", "A\napp=x\x1B").setFrame({120, 120, 80.9, 30.9});
    hover(onButton);
    EXPECT_EQ(lastLine(), "app=com.example.notes electron=false path=AX-real "
                          R"(header=Button · A\napp=x\u001B box=80x30 win=600x400)");
}

TEST_F(SessionTest, LogsNothingUnlessAskedFor) {
    overlay->start();
    hover(onButton);
    desktop.defaults.values["lumetry.debug"] = true;
    hover(onField);
    EXPECT_TRUE(desktop.fileSystem.appended.empty()) << "the setting counts from the next start";
}

} // namespace
} // namespace lumetry
