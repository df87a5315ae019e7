#include "app/hot_key.h"

#include "support/fake_platform/fake_shell.h"

#include <gtest/gtest.h>

#include <memory>

namespace lumetry {
namespace {

constexpr std::uint32_t signature = 0x4C554D54;

TEST(HotKey, CallsItsActionFromTheBeginningToTheEnd) {
    FakeHotKeys hotKeys;
    int calls = 0;
    auto key = std::make_unique<HotKey>(hotKeys, 46, 0x1200, 1, [&] { ++calls; });
    EXPECT_EQ(hotKeys.registrations.all().at(0).id, (HotKeyID{signature, 1}));
    EXPECT_EQ(hotKeys.press({signature, 1}), std::vector<EventStatus>{noErr});
    EXPECT_EQ(calls, 1);
    // The signature does not matter, an unknown identifier is swallowed.
    EXPECT_EQ(hotKeys.press({0, 1}), std::vector<EventStatus>{noErr});
    EXPECT_EQ(hotKeys.press({signature, 2}), std::vector<EventStatus>{noErr});
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(HotKey::handleEvent(nullptr), -9874);

    key.reset();
    EXPECT_TRUE(hotKeys.registrations.all().empty());
    EXPECT_TRUE(hotKeys.handlers.all().empty());
    const HotKeyEvent late{{signature, 1}};
    EXPECT_EQ(HotKey::handleEvent(&late), noErr);
    EXPECT_EQ(calls, 2);
}

TEST(HotKey, ALaterOneOfItsIdentifierTakesItsPlaceAndMayGoInItsAction) {
    FakeHotKeys hotKeys;
    int early = 0;
    int late = 0;
    auto one = std::make_unique<HotKey>(hotKeys, 46, 0x1200, 1, [&] { ++early; });
    std::unique_ptr<HotKey> two;
    two = std::make_unique<HotKey>(hotKeys, 46, 0x1200, 1, [&] {
        ++late;
        two.reset();
    });
    one.reset();
    hotKeys.press({signature, 1});
    EXPECT_EQ(early, 0);
    EXPECT_EQ(late, 1);
    EXPECT_TRUE(hotKeys.registrations.all().empty());
}

} // namespace
} // namespace lumetry
