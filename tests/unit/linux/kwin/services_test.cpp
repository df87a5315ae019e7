#include "platform/linux/kwin/bridge.h"
#include "platform/linux/kwin/global_shortcuts.h"
#include "platform/linux/kwin/input.h"
#include "platform/linux/kwin/screen_capture.h"
#include "platform/linux/system/environment.h"
#include "scripted_kwin.h"
#include "support/fake_linux/poll_loop.h"
#include "support/fake_platform/fake_run_loop.h"
#include "support/printing/printing.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

namespace lumetry::kwin {
namespace {

using namespace std::chrono_literals;

std::string line(const std::string& id, bool tellsDamage,
                 const std::string& frame = "10 20 40 20") {
    return id + "\t77\tnormal\t1\t1\t" + frame + "\t\t\t0\t" + (tellsDamage ? "1" : "0") +
           "\teditor\tEditor\t\tNotes";
}

class KWinServices : public testing::Test {
protected:
    explicit KWinServices(const std::string& windows = line("{1}", true))
        : kwin(windows), bridge(Bridge::open(loop, loop, problem)) {}

    [[nodiscard]] std::optional<std::uint32_t> pixel() {
        const auto bitmap = capture.captureBelow({15, 25, 1, 1}, 0);
        return bitmap ? std::optional(bitmap->at(0, 0)) : std::nullopt;
    }
    /// Until a picture is not taken again for its age alone.
    static void letPicturesAge() { std::this_thread::sleep_for(120ms); }

    test::PollLoop loop;
    test::ScriptedKWin kwin;
    std::string problem;
    std::unique_ptr<Bridge> bridge;
    KWinCapture capture{*bridge, loop, loop, [] {
                            return std::vector<Output>{{{0, 0, 800, 600}}};
                        }};
    Token use = bridge->use();
};

TEST_F(KWinServices, TakeAPictureAgainUntilTheWindowChanges) {
    EXPECT_EQ(pixel(), 0xFF332211); // its red and blue are the other way round
    letPicturesAge();
    EXPECT_EQ(pixel(), 0xFF332211);
    EXPECT_EQ(kwin.captures, 1);
    kwin.color = 0xFF445566;
    letPicturesAge();
    bool heard = false;
    const auto damages = bridge->onDamage([&](const std::string&) { heard = true; });
    kwin.tell("damaged", "{1}");
    ASSERT_TRUE(loop.runUntil([&] { return heard; }));
    EXPECT_EQ(pixel(), 0xFF665544);
    EXPECT_EQ(kwin.captures, 2);
    // It may go on changing unheard for a while: once it is at rest, there is another picture.
    kwin.color = 0xFF0A0B0C;
    ASSERT_TRUE(loop.runUntil([&] { return kwin.captures == 3; }));
    letPicturesAge();
    EXPECT_EQ(pixel(), 0xFF0C0B0A);
    EXPECT_EQ(kwin.captures, 3);
}

TEST_F(KWinServices, AreHeardFromKWinAlone) {
    EXPECT_EQ(bridge->pointer(), (Point{1, 2}));
    loop.settle();
    int moves = 0;
    const auto token = bridge->onPointer([&] { ++moves; });
    kwin.pretend("pointer", "500 500");
    loop.settle();
    EXPECT_EQ(moves, 0);
    kwin.tell("pointer", "5 6");
    ASSERT_TRUE(loop.runUntil([&] { return moves > 0; }));
    loop.settle();
    EXPECT_EQ(moves, 1);
    EXPECT_EQ(bridge->pointer(), (Point{5, 6}));
}

// It comes in while the program waits for an answer, and with nothing behind it.
TEST_F(KWinServices, AreHeardWhileSomethingElseIsWaitedFor) {
    ASSERT_TRUE(bridge->windows());
    loop.settle();
    int moves = 0;
    const auto token = bridge->onPointer([&] { ++moves; });
    loop.skip(2.5); // the script is looked after every other second
    EXPECT_TRUE(loop.runUntil([&] { return moves == 1; }));
}

TEST_F(KWinServices, AreNotWaitedForAgainAtOnce) {
    ASSERT_TRUE(bridge->windows());
    kwin.answers = false;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(pixel(), std::nullopt);
    EXPECT_EQ(pixel(), std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 950ms);
}

TEST_F(KWinServices, KeepAKeyOrSayThatItIsTaken) {
    GlobalShortcuts shortcuts(loop, loop);
    bool taken = false;
    int presses = 0;
    shortcuts.onTaken([&] { taken = true; });
    kwin.answers = false;
    const auto token = shortcuts.take("leave", "Leave", 1, [&] { ++presses; });
    kwin.answers = true;
    EXPECT_EQ(kwin.keys, 0);
    EXPECT_FALSE(taken); // nobody has said so
    loop.skip(2.5);
    ASSERT_TRUE(loop.runUntil([&] { return kwin.keys == 1; }));
    kwin.press("leave");
    ASSERT_TRUE(loop.runUntil([&] { return presses == 1; }));
    kwin.gives = false;
    const auto another = shortcuts.take("pin", "Pin", 2, [] {});
    EXPECT_FALSE(taken); // this is not the hot key
    const auto hotKey = shortcuts.registerEventHotKey(keyCodeM, hotKeyShift | hotKeyControl, {});
    EXPECT_TRUE(taken);
}

// Somebody else unloads it, and what happens until it runs again is heard of by nobody.
TEST_F(KWinServices, DoNotTrustPicturesFromBeforeTheScriptRanAnew) {
    EXPECT_EQ(pixel(), 0xFF332211);
    kwin.hasScript = false;
    kwin.color = 0xFF445566;
    letPicturesAge();
    loop.skip(2.5);
    ASSERT_TRUE(loop.runUntil([&] { return kwin.scripts == 2; }));
    loop.settle();
    EXPECT_EQ(pixel(), 0xFF665544);
}

// Left-over scripts are looked for among the files of all programs. To open this one takes for
// ever.
TEST_F(KWinServices, LeaveOtherProgramsFilesAlone) {
    std::string folder = "/tmp/lumetry-XXXXXX";
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    const auto pipe = std::filesystem::path(folder) / "some.fifo";
    ASSERT_EQ(mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
    const std::string before = environmentText("XDG_RUNTIME_DIR");
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    EXPECT_NE(Bridge::open(loop, loop, problem), nullptr);
    EXPECT_TRUE(std::filesystem::exists(pipe));
    setenv("XDG_RUNTIME_DIR", before.c_str(), 1);
    std::filesystem::remove_all(folder);
}

TEST_F(KWinServices, DoNotStretchThePictureOfAWindowThatHasBecomeLarger) {
    ASSERT_TRUE(pixel());
    // A picture is on its way already when it changes.
    kwin.tell("damaged", "{1}");
    ASSERT_TRUE(loop.runUntil([&] { return kwin.captures == 2; }));
    kwin.tell("windows", line("{1}", true, "10 20 80 40"));
    ASSERT_TRUE(loop.runUntil([&] {
        return bridge->knownWindows()->front().frame == Rect{10, 20, 80, 40};
    }));
    const int before = kwin.captures;
    EXPECT_TRUE(pixel());
    EXPECT_GT(kwin.captures, before);
}

// KWin tells nobody of scrolling, but what scrolls draws.
TEST_F(KWinServices, HaveWhatDrawsBelowThePointerLookedAtAgain) {
    FakeRunLoop clock;
    GlobalShortcuts shortcuts(loop, loop);
    KWinInput input(
        *bridge, shortcuts,
        {[] { return true; }, [] { return ModifierFlags(); }, [](const auto&) { return Token(); }},
        [] { return std::vector<Output>(); }, clock);
    int damages = 0;
    const auto heard = bridge->onDamage([&](const std::string&) { ++damages; });
    int looks = 0;
    const auto token = input.addGlobalMonitorForEvents(eventMask(EventType::scrollWheel),
                                                       [&](const Event&) { ++looks; });
    const auto drawFor = [&](double seconds, const std::string& pointer = "15 25") {
        for (const double end = clock.now() + seconds; clock.now() < end; clock.advance(0.1)) {
            kwin.tell("pointer", pointer);
            const int before = damages;
            kwin.tell("damaged", "{1}");
            loop.requireUntil("damage", [&] { return damages > before; });
        }
    };
    drawFor(0.5, "1 2");
    EXPECT_EQ(looks, 0); // the pointer is elsewhere
    drawFor(1.5);
    EXPECT_GE(looks, 5);
    // A film is not followed picture by picture.
    drawFor(1);
    looks = 0;
    drawFor(4);
    EXPECT_GE(looks, 3);
    EXPECT_LE(looks, 9);
}

class KWinServicesWithoutDamage : public KWinServices {
protected:
    KWinServicesWithoutDamage() : KWinServices(line("{gone}", false) + "\n" + line("{1}", false)) {}
};

TEST_F(KWinServicesWithoutDamage, ShowWhatIsBelowAWindowThatIsGoneForAMoment) {
    EXPECT_EQ(pixel(), 0xFF332211);
    const int before = kwin.captures;
    EXPECT_EQ(pixel(), 0xFF332211);
    EXPECT_EQ(kwin.captures, before);
    letPicturesAge();
    EXPECT_EQ(pixel(), 0xFF332211);
    EXPECT_EQ(kwin.captures, 2 * before);
}

} // namespace
} // namespace lumetry::kwin
