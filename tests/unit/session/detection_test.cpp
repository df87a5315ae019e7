#include "session_test.h"

#include "support/pictures/pictures.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace lumetry {
namespace {

/// A window whose page is one frame, or has none, with a blue button painted on it.
class Detection : public SessionTest {
protected:
    /// The distances to the last pixel on either side: the pixel they start from is not counted.
    static constexpr Rect paintedFrame = {300, 250, 119, 31};
    static constexpr Point onPainted = {350, 260};

    Detection() {
        Bitmap screen = evenBitmap(1440, 900, 0xFFFFFF);
        fillRect(screen, {300, 250, 120, 32}, 0x1E90FF);
        desktop.screenCapture.paint(std::move(screen));
        desktop.defaults.values["lumetry.debug"] = true;
        desktop.pointAt(onDesktop);
        overlay->start();
    }

    [[nodiscard]] std::string logged() {
        return desktop.fileSystem.appended["/tmp/lumetry-detect.log"];
    }
    /// What the log says of what is at the point.
    [[nodiscard]] std::string lineAt(Point at) {
        desktop.fileSystem.appended.clear();
        hover(at);
        return logged();
    }
};

TEST_F(Detection, TellsHowEachThingIsFound) {
    EXPECT_EQ(logged(),
              "app=(none) electron=false path=desktop(win-nil) header=color box=- win=-\n");
    EXPECT_EQ(view().rows, (std::vector<GlanceRow>{{"pixel", "#FFFFFF", white}}));
    EXPECT_EQ(desktop.screenCapture.lastWindowNumber, window().number);

    const std::string notes = "app=com.example.notes electron=false path=";
    const std::string box = " header=≈ element box=119x31 win=600x400\n";
    EXPECT_EQ(lineAt(onWindow), notes + "AX-nil+pixel-nil header=- box=- win=600x400\n");
    desktop.accessibility.application(pid).answerWith({});
    EXPECT_EQ(lineAt(onPainted), notes + "pixel-only(AX-nil)" + box);
    EXPECT_EQ(view().header, "≈ element");
    EXPECT_EQ(view().targetRect, inView(paintedFrame));
    EXPECT_EQ(view().rows,
              (std::vector<GlanceRow>{{"size", "119 × 31", {}},
                                      {"pixel", "#1E90FF", Color{30 / 255.0, 144 / 255.0, 1, 1}}}));

    // The same box in an application of one frame, which is found in another way.
    FakeElement& page = desktop.accessibility.makeElement(pid, "AXWebArea");
    page.set("AXTitle", "Chat").setFrame(windowBounds);
    desktop.launchElectron(pid, "Chat");
    desktop.state.electronPIDCache.clear();
    const std::string chat = "app=com.example.Chat electron=true path=";
    EXPECT_EQ(lineAt(onPainted), chat + "pixel-only(AX-nil)" + box);
    desktop.accessibility.application(pid).answerWith({&page});
    EXPECT_EQ(lineAt(onPainted), chat + "coarse→pixel" + box);
    EXPECT_EQ(view().targetRect, inView(paintedFrame));
    hoverWithOption(onPainted);
    EXPECT_EQ(view().measureA, inView(paintedFrame)) << "a box can be measured from";
    desktop.pointer.modifiers = 0;
    EXPECT_EQ(lineAt(onWindow),
              chat + "AX-coarse-shown header=WebArea · Chat box=600x400 win=600x400\n");
}

TEST_F(Detection, LogsEachChangeOnceOnOneLine) {
    button.set("AXTitle", "A\napp=x\x1B").setFrame({120, 120, 80.9, 30.9});
    const std::string line = R"(app=com.example.notes electron=false path=AX-real )"
                             R"(header=Button · A\napp=x\u001B box=80x30 win=600x400)"
                             "\n";
    EXPECT_EQ(lineAt(onButton), line);
    EXPECT_EQ(lineAt({onButton.x + 1, onButton.y}), "");
    EXPECT_NE(lineAt(onField), "");
    EXPECT_EQ(lineAt(onButton), line);
    overlay->stop();
    overlay->start();
    EXPECT_EQ(lineAt(onButton), "") << "the same as before it was left";
}

TEST_F(Detection, IsLoggedElsewhereWhereTheEnvironmentSaysSo) {
    setenv("LUMETRY_DETECT_LOG", "/elsewhere", 1);
    EXPECT_EQ(lineAt(onField), "");
    unsetenv("LUMETRY_DETECT_LOG");
    EXPECT_EQ(desktop.fileSystem.appended.count("/elsewhere"), 1U);
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
