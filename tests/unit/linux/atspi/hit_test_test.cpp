#include "atspi_test.h"

#include <atspi/atspi-constants.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace lumetry::test {
namespace {

ScriptedObject withParent(ScriptedObject object, const std::string& path) {
    object.parent = Reference{"", path};
    return object;
}

ScriptedObject withChildAt(ScriptedObject object, std::function<std::string(int, int)> childAt) {
    object.childAt = std::move(childAt);
    return object;
}

class Hits : public AtspiTest {};

TEST_F(Hits, GoDownToTheInnermostThatIsSeenThere) {
    struct Case {
        std::string name;
        ScriptedTree tree;
        std::string expected;
    };
    const auto alwaysChild = [](const std::string& path) {
        return [path](int, int) { return path; };
    };
    const std::vector<Case> cases = {
        {"three levels",
         windowWith(object("window", {0, 0, 800, 600}, {"/box"}),
                    {{"/box", object("box", {10, 10, 300, 300}, {"/button"})},
                     {"/button", object("button", {90, 90, 50, 50})}}),
         "button"},
        {"nothing inside", windowWith(object("window", {0, 0, 800, 600})), "window"},
        {"on the window's decoration", windowWith(object("window", {0, 150, 800, 450})), "window"},
        {"an answer that lies elsewhere",
         windowWith(withChildAt(object("window", {0, 0, 800, 600}), alwaysChild("/stray")),
                    {{"/stray", withParent(object("stray", {500, 500, 10, 10}), "/window")}}),
         "window"},
        {"an answer without area",
         windowWith(withChildAt(object("window", {0, 0, 800, 600}, {"/box"}), alwaysChild("/flat")),
                    {{"/box", withParent(object("box", {0, 0, 400, 400}, {"/flat"}), "/window")},
                     {"/flat", withParent(object("flat", {100, 100, 0, 0}), "/box")}}),
         "box"},
        {"an entry of a list that is closed",
         windowWith(
             withChildAt(object("window", {0, 0, 800, 600}, {"/combo"}), alwaysChild("/entry")),
             {{"/combo", withParent(object("combo", {50, 50, 100, 100}, {"/menu"}), "/window")},
              {"/menu", hidden(withParent(object("menu", {50, 50, 100, 100}), "/combo"))},
              {"/entry", hidden(withParent(object("entry", {50, 50, 100, 100}), "/menu"))}}),
         "combo"},
        {"going round in circles",
         windowWith(object("window", {0, 0, 800, 600}, {"/a"}),
                    {{"/a", withChildAt(object("a", {0, 0, 400, 400}), alwaysChild("/b"))},
                     {"/b", withChildAt(object("b", {0, 0, 300, 300}), alwaysChild("/c"))},
                     {"/c", withChildAt(object("c", {0, 0, 200, 200}), alwaysChild("/a"))}}),
         "c"},
        {"an answer of another type", windowWith([] {
             ScriptedObject window = object("window", {0, 0, 800, 600});
             window.answers["GetAccessibleAtPoint"] = text("/x");
             return window;
         }()),
         "window"},
        {"a popover over the content",
         windowWith(object("window", {0, 0, 800, 600}, {"/content", "/shut", "/popover"}),
                    {{"/content", object("content", {0, 0, 800, 600})},
                     {"/shut", object("shut", {-2147483647 - 1, -2147483647 - 1, 1, 1})},
                     {"/popover", object("popover", {80, 80, 200, 200}, {"/item"})},
                     {"/item", object("item", {90, 90, 100, 30})}},
                    "gtk"),
         "item"},
        {"a popover on a surface of its own, wherever that is",
         windowWith(object("window", {0, 0, 800, 600}, {"/content", "/popover"}),
                    {{"/content", object("content", {26, 23, 748, 554})},
                     {"/popover", object("popover", {0, 0, 218, 213})}},
                    "gtk"),
         "content"},
        {"Chromium's last answer while it covers the point",
         windowWith(withChildAt(object("window", {0, 0, 800, 600}), alwaysChild("/page")),
                    {{"/page", object("page", {0, 0, 800, 600}, {"/under", "/over", "/unseen"})},
                     {"/under", object("under", {50, 50, 200, 200})},
                     {"/over", object("over", {60, 60, 200, 200}, {"/text"})},
                     {"/text", object("text", {90, 90, 100, 20})},
                     {"/unseen", hidden(object("unseen", {0, 0, 800, 600}))}},
                    "Chromium"),
         "text"},
        {"a text behind the widget through which Qt shows it",
         windowWith(object("window", {0, 0, 800, 600}, {"/text"}),
                    {{"/text",
                      [] {
                          ScriptedObject text = object("text", {50, 50, 200, 200}, {"/viewport"});
                          text.textContent = "a note";
                          return text;
                      }()},
                     {"/viewport",
                      [] {
                          ScriptedObject viewport = object("viewport", {51, 51, 198, 198});
                          viewport.role = ATSPI_ROLE_FILLER;
                          viewport.parent = Reference{"", "/text"};
                          return viewport;
                      }()}},
                    "Qt"),
         "text"},
    };
    for (const Case& each : cases) {
        windows.windows.clear();
        auto& application = start(each.tree);
        // The number of a window is taken again by the next one, as X servers do.
        showWindow(application);
        accessibility = std::make_unique<AtspiAccessibility>(windows, loop);
        EXPECT_EQ(titleAt(application, 100, 100), each.expected) << each.name;
        EXPECT_EQ(titleAt(application, 100, 100), each.expected) << each.name << ", again";
    }
}

TEST_F(Hits, TakeTheWindowThatIsUnderThePoint) {
    ScriptedTree tree = windowWith(object("left", {0, 0, 400, 600}, {"/a"}),
                                   {{"/a", object("in left", {10, 10, 300, 300})},
                                    {"/right", object("right", {400, 0, 400, 600}, {"/b"})},
                                    {"/b", object("in right", {410, 10, 300, 300})},
                                    {"/shut", hidden(object("shut", {400, 0, 400, 600}))}});
    tree[rootPath].children = {{"", "/shut"}, {"", "/window"}, {"", "/right"}};
    auto& application = start(tree);
    // The second display's corner is the origin; AT-SPI counts from the first one's.
    windows.space.origin = {0, 100};
    windows.windows = {{1, application.pid(), {0, -120, 400, 620}, false},
                       {2, application.pid(), {400, -120, 400, 620}, false}};

    EXPECT_EQ(titleAt(application, 50, -50), "in left");
    EXPECT_EQ(titleAt(application, 450, -50), "in right");
    EXPECT_EQ(titleAt(application, 450, 900), "-") << "no window there";
    const auto systemWide = accessibility->createSystemWide().copyElementAtPosition(450, -50);
    ASSERT_TRUE(systemWide);
    EXPECT_EQ(systemWide, hit(application, 450, -50));
    EXPECT_EQ(systemWide->getPid(), application.pid());
}

/// A window of Chromium's with a list of items in those places.
ScriptedTree listWindow(const std::vector<std::array<std::int32_t, 4>>& places) {
    ScriptedTree tree = windowWith(
        withChildAt(object("window", {0, 0, 800, 600}), [](int, int) { return "/list"; }), {},
        "Chromium");
    ScriptedObject& list = tree["/list"] = object("list", {0, 0, 800, 600});
    for (const auto& place : places) {
        const std::string path = "/item" + std::to_string(list.children.size());
        list.children.push_back({"", path});
        tree[path] = object(path, place);
    }
    return tree;
}

std::vector<std::array<std::int32_t, 4>>
places(int count, const std::function<std::array<std::int32_t, 4>(int)>& placeOf) {
    std::vector<std::array<std::int32_t, 4>> all;
    all.reserve(static_cast<std::size_t>(count));
    for (int item = 0; item < count; ++item) {
        all.push_back(placeOf(item));
    }
    return all;
}

TEST_F(Hits, KeepNoOtherWindowForOneThatIsNotShownYet) {
    ScriptedObject dialog = object("dialog", {0, 0, 500, 600});
    dialog.answers["GetState"] = [asked = std::make_shared<int>(0)](DBusMessageIter& reply) {
        const bool shown = ++*asked > 2;
        numbers({shown ? std::uint32_t{1} << ATSPI_STATE_SHOWING : 0U, 0U})(reply);
    };
    ScriptedTree tree = windowWith(object("main", {0, 0, 800, 600}), {{"/dialog", dialog}});
    tree[rootPath].children.push_back({"", "/dialog"});
    auto& application = start(tree);
    windows.windows = {{1, application.pid(), {0, 0, 500, 600}, false}};
    EXPECT_EQ(titleAt(application, 100, 100), "main");
    EXPECT_EQ(titleAt(application, 100, 100), "main");
    EXPECT_EQ(titleAt(application, 100, 100), "dialog");
}

TEST_F(Hits, CountFromTheWindowInGtk4) {
    ScriptedObject button = object("Save", {20, 30, 100, 40});
    button.states = std::uint64_t{1} << ATSPI_STATE_VISIBLE; // never showing
    button.childAt = [](int, int) { return ""; };
    ScriptedObject window = object("window", {0, 0, 780, 580}, {"/button"});
    window.childAt = button.childAt;
    auto& application = start(windowWith(window, {{"/button", button}}, "GTK"));
    for (const double x : {100, 150}) {
        windows.windows = {{1, application.pid(), {x, 20, 800, 630}, false, {x, 50, 800, 600}}};
        const auto found = hit(application, static_cast<float>(x + 40), 100);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->copyAttributeValue("AXTitle")->as<std::string>(), "Save");
        EXPECT_EQ(found->copyAttributeValue("AXPosition")->as<Point>(), (Point{x + 30, 90}));
    }
}

TEST_F(Hits, FindAGtk4PopoverByItsSize) {
    const auto inside = [](const char* title, const std::array<std::int32_t, 4>& place,
                           const std::vector<std::string>& children = {}) {
        ScriptedObject object = test::object(title, place, children);
        object.states = std::uint64_t{1} << ATSPI_STATE_VISIBLE;
        object.childAt = [](int, int) { return ""; };
        return object;
    };
    // It is said to lie where the button does that has opened it.
    auto& application =
        start(windowWith(inside("window", {0, 0, 780, 580}, {"/button"}),
                         {{"/button", inside("Menu", {20, 30, 40, 30}, {"/popover"})},
                          {"/popover", inside("popover", {20, 30, 200, 120}, {"/entry"})},
                          {"/entry", inside("About", {30, 40, 180, 30})}},
                         "GTK"));
    windows.windows = {{2, application.pid(), {300, 100, 200, 120}, true, {300, 100, 200, 120}},
                       {1, application.pid(), {0, 0, 800, 600}, false, {0, 0, 800, 600}}};
    for (const double x : {300, 350}) {
        windows.windows.front().bounds.x = windows.windows.front().client.x = x;
        const auto entry = hit(application, static_cast<float>(x + 50), 120);
        ASSERT_TRUE(entry);
        EXPECT_EQ(entry->copyAttributeValue("AXTitle")->as<std::string>(), "About");
        EXPECT_EQ(entry->copyAttributeValue("AXPosition")->as<Point>(), (Point{x + 10, 110}));
    }
    const auto button = hit(application, 35, 50);
    ASSERT_TRUE(button);
    EXPECT_EQ(button->copyAttributeValue("AXPosition")->as<Point>(), (Point{30, 40}));
}

// On Wayland Qt tells the places in a menu from the window below it, and takes points from the
// menu.
TEST_F(Hits, FindTheEntryOfAMenuThatIsASurfaceOfItsOwn) {
    windows.placesInWindows = true;
    accessibility = std::make_unique<AtspiAccessibility>(windows, loop);
    ScriptedObject menu = object("menu", {6, 19, 120, 68}, {"/open", "/save"});
    menu.childAt = [](int /*x*/, int y) { return y < 22 ? "/open" : "/save"; };
    auto tree = windowWith(object("window", {0, 0, 600, 400}, {"/file", "/label"}),
                           {{"/file", object("File", {6, 0, 29, 19}, {"/menu"})},
                            {"/menu", menu},
                            {"/open", object("Open", {6, 19, 120, 22})},
                            {"/save", object("Save", {6, 41, 120, 22})},
                            // As large as the menu, but elsewhere.
                            {"/label", object("label", {24, 300, 120, 68})}},
                           "Qt");
    for (auto& [path, each] : tree) {
        each.knowsOnlyItsWindow = true;
    }
    auto& application = start(tree);
    const auto window = [&](std::uint32_t id, const Rect& place) {
        DesktopWindow made = {id, application.pid(), place, false, place};
        made.surface = place;
        return made;
    };
    windows.windows = {window(2, {346, 219, 120, 68}), window(1, {340, 200, 600, 400})};
    windows.windows.front().popup = true;
    windows.windows.front().openerSurface = windows.windows.back().surface;
    for (const auto& [y, title, top] :
         {std::tuple(222, "Open", 219), {240, "Open", 219}, {242, "Save", 241}}) {
        const auto entry = hit(application, 380, static_cast<float>(y));
        ASSERT_TRUE(entry);
        EXPECT_EQ(entry->copyAttributeValue("AXTitle")->as<std::string>(), title);
        EXPECT_EQ(entry->copyAttributeValue("AXPosition")->as<Point>(), (Point{346, top * 1.0}));
    }
    EXPECT_EQ(titleAt(application, 370, 520), "label");
}

TEST_F(Hits, AskLittleOfALongList) {
    using Place = std::array<std::int32_t, 4>;
    constexpr int items = 300;
    auto& application = start(listWindow(places(items, [](int item) {
        return Place{0, 24 * item, 400, 20};
    })));
    showWindow(application);
    ASSERT_EQ(titleAt(application, 100, 250), "/item10");
    ASSERT_EQ(titleAt(application, 100, 565), "/item23");

    const auto requestsOf = [&](const std::function<void()>& action) {
        const auto before = accessibility->requests();
        action();
        return accessibility->requests() - before;
    };
    const Token kept = accessibility->keepReplies();
    EXPECT_LE(requestsOf([&] { (void)hit(application, 100, 250); }), 34)
        << "some items for their places, and only one at the point for more";
    const auto found = hit(application, 100, 262); // between two items
    ASSERT_TRUE(found);
    EXPECT_EQ(requestsOf([&] {
                  const auto children = found->copyAttributeValue("AXChildren");
                  const auto elements = children->as<std::vector<AXUIElement>>();
                  ASSERT_EQ(elements->size(), items);
                  (void)elements->front().copyAttributeValue("AXPosition");
              }),
              0)
        << "what the hit test has asked for is kept";
}

TEST_F(Hits, FindAnItemHoweverTheListIsLaidOut) {
    using Place = std::array<std::int32_t, 4>;
    constexpr int manyItems = 1000;
    struct Case {
        const char* layout;
        std::vector<Place> places;
        Point at;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {"across",
         places(100,
                [](int item) {
                    return Place{8 * item, 10, 6, 20};
                }),
         {403, 20},
         "/item50"},
        {"in rows",
         places(120,
                [](int item) {
                    return Place{50 * (item % 12), 40 * (item / 12), 48, 38};
                }),
         {310, 170},
         "/item54"},
        {"of uneven heights",
         places(40,
                [](int item) {
                    return Place{0, item * item / 3, 100, (2 * item + 1) / 3};
                }),
         {50, 300},
         "/item30"},
        {"longer than all that is asked about",
         places(manyItems,
                [](int item) {
                    return Place{0, 20 * item - 9800, 100, 18};
                }),
         {50, 205},
         "/item500"},
        {"of any heights, and very long",
         places(3000,
                [y = -40000](int item) mutable {
                    const int height = 20 + item * 7919 % 41;
                    y += height;
                    return Place{0, y - height, 100, height};
                }),
         {50, 300},
         "/item1008"},
        {"below one that lies over all",
         places(60,
                [](int item) {
                    return item < 59 ? Place{0, 10 * item, 100, 10} : Place{40, 40, 400, 400};
                }),
         {60, 100},
         "/item59"},
        {"without an order, one over another",
         places(40,
                [](int item) {
                    return Place{item * 37 % 400, item * 91 % 500, 60, 60};
                }),
         {100, 100},
         "/item34"},
    };
    for (const auto& each : cases) {
        accessibility = std::make_unique<AtspiAccessibility>(windows, loop);
        windows.windows.clear();
        auto& application = start(listWindow(each.places));
        showWindow(application);
        EXPECT_EQ(titleAt(application, each.at.x, each.at.y), each.expected) << each.layout;
    }
}

TEST_F(Hits, InAWindowThatIsKnownWaitOnce) {
    auto& application = start(windowWith(object("window", {0, 0, 800, 600}, {"/box"}),
                                         {{"/box", object("box", {10, 10, 300, 300}, {"/a", "/b"})},
                                          {"/a", object("a", {90, 90, 20, 20})},
                                          {"/b", object("b", {150, 90, 20, 20})}}));
    showWindow(application);
    ASSERT_EQ(titleAt(application, 100, 100), "a");

    Token kept = accessibility->keepReplies();
    auto waits = accessibility->waits();
    ASSERT_TRUE(hit(application, 101, 101));
    EXPECT_EQ(accessibility->waits() - waits, 1) << "near the last point";
    kept.reset();
    kept = accessibility->keepReplies();
    waits = accessibility->waits();
    ASSERT_EQ(titleAt(application, 160, 100), "b");
    EXPECT_EQ(accessibility->waits() - waits, 3) << "on to a neighbour, and its title";
    kept.reset();

    kept = accessibility->keepReplies();
    const auto element = hit(application, 160, 100);
    waits = accessibility->waits();
    (void)element->copyAttributeValue("AXSize");
    EXPECT_EQ(accessibility->waits(), waits) << "the way down has shown its place already";
}

TEST_F(Hits, FindWhatPopupsShow) {
    // Qt: the list below its combo box; no window of the application's.
    auto& qt = start(windowWith(object("window", {0, 0, 800, 600}, {"/combo", "/shut"}),
                                {{"/combo", object("combo", {100, 300, 200, 30}, {"/list"})},
                                 {"/shut", hidden(object("shut", {100, 330, 200, 100}))},
                                 {"/list", object("list", {101, 331, 198, 98}, {"/entry"})},
                                 {"/entry", object("entry", {101, 351, 198, 20})}}));
    windows.windows = {{1, qt.pid(), {100, 330, 200, 100}, true},
                       {2, qt.pid(), {0, 0, 800, 600}, false}};
    EXPECT_EQ(titleAt(qt, 150, 360), "entry");
    EXPECT_EQ(titleAt(qt, 150, 310), "combo");

    // Chromium: an empty window over the page, which has the entries.
    ScriptedTree chromium =
        windowWith(object("window", {0, 0, 800, 600}, {"/select"}),
                   {{"/select", object("select", {100, 300, 200, 30}, {"/menu"})},
                    {"/menu", object("menu", {100, 300, 200, 10}, {"/option"})},
                    {"/option", object("option", {101, 351, 198, 20})},
                    {"/popup", object("popup", {100, 330, 200, 100})}},
                   "Chromium");
    chromium[rootPath].children.push_back({"", "/popup"});
    auto& browser = start(chromium);
    windows.windows = {{3, browser.pid(), {100, 330, 200, 100}, true},
                       {4, browser.pid(), {0, 0, 800, 600}, false}};
    EXPECT_EQ(titleAt(browser, 150, 310), "select");
    EXPECT_EQ(titleAt(browser, 150, 360), "option");

    // Nothing stands for it: what lies behind is not what is pointed at.
    auto& other = start(windowWith(object("window", {0, 0, 800, 600})));
    windows.windows = {{5, other.pid(), {100, 330, 200, 100}, true},
                       {6, other.pid(), {0, 0, 800, 600}, false}};
    EXPECT_EQ(titleAt(other, 150, 360), "-");
    EXPECT_EQ(titleAt(other, 150, 310), "window");
}

TEST_F(Hits, EndWhenTimeIsOver) {
    struct Case {
        std::string name;
        std::string path;
        std::string method;
    };
    for (const auto& [name, path, method] : {
             Case{"at the application", rootPath, "GetChildren"},
             Case{"at the window", "/window", "GetAccessibleAtPoint"},
             Case{"further down", "/box", "GetAccessibleAtPoint"},
         }) {
        ScriptedTree tree = windowWith(object("window", {0, 0, 800, 600}, {"/box"}),
                                       {{"/box", object("box", {10, 10, 300, 300})}});
        tree[path].silent = {method};
        windows.windows.clear();
        auto& application = start(tree);
        showWindow(application);
        const AXUIElement root = accessibility->createApplication(application.pid());
        root.setMessagingTimeout(0.05F);
        EXPECT_FALSE(root.copyElementAtPosition(100, 100)) << name;
    }
}

TEST_F(Hits, NoticeThatApplicationsComeAndGo) {
    auto& first = start(windowWith(object("first", {0, 0, 800, 600})));
    showWindow(first);
    ASSERT_EQ(titleAt(first, 100, 100), "first");
    first.end();
    EXPECT_EQ(titleAt(first, 100, 100), "-");

    applications.clear();
    auto& second = start(windowWith(object("second", {0, 0, 800, 600})));
    windows.windows = {{1, second.pid(), {0, 0, 800, 600}, false}};
    EXPECT_EQ(titleAt(second, 100, 100), "second") << "in a window of the same number";

    const auto unknown = accessibility->createApplication(1);
    const Token kept = accessibility->keepReplies();
    EXPECT_FALSE(unknown.copyAttributeValue("AXTitle"));
    const auto requests = accessibility->requests();
    EXPECT_FALSE(unknown.copyAttributeValue("AXTitle"));
    EXPECT_EQ(accessibility->requests(), requests) << "asked about once in a sample";
}

// Waiting for an answer from oneself lasts until the time is over.
TEST_F(Hits, NeverAskThisProgramItself) {
    auto& application = start(windowWith(object("window", {0, 0, 800, 600})));
    windows.windows = {{1, getpid(), {0, 0, 800, 600}, false}};
    ASSERT_TRUE(accessibility->isProcessTrusted());
    const auto requests = accessibility->requests();
    const AXUIElement own = accessibility->createApplication(getpid());
    EXPECT_FALSE(own.copyElementAtPosition(100, 100));
    EXPECT_FALSE(own.copyAttributeValue("AXChildren"));
    own.setAttributeValue("AXManualAccessibility", true);
    EXPECT_EQ(accessibility->requests(), requests);
    (void)application;
}

TEST_F(Hits, WakeAnApplicationWithoutWaiting) {
    auto& application = start(windowWith(object("window", {0, 0, 800, 600})));
    const AXUIElement root = accessibility->createApplication(application.pid());
    application.freeze();
    root.setAttributeValue("AXManualAccessibility", true);
    root.setAttributeValue("AXManualAccessibility", false);
    EXPECT_EQ(accessibility->waits(), 0);
    EXPECT_TRUE(loop.watches());
    application.thaw();
    EXPECT_TRUE(loop.runUntil([&] { return !loop.watches(); }));
    EXPECT_EQ(accessibility->waits(), 0);
    // The registry's list, its process and the registry's, the windows, and the window's
    // attributes.
    EXPECT_EQ(accessibility->requests(), 4);
}

} // namespace
} // namespace lumetry::test
