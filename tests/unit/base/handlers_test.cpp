#include "base/handler_list.h"
#include "base/lifetime.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lumetry {
namespace {

TEST(HandlerList, LetsHandlersComeAndGoDuringACall) {
    auto list = std::make_unique<HandlerList<int>>();
    std::string calls;
    Token third;
    Token added;
    Token first = list->add([&](int) {
        calls += 'a';
        third.reset();
        if (!added) {
            added = list->add([&](int) { calls += 'n'; });
        }
    });
    Token second = list->add([&](int) {
        calls += 'b';
        second.reset();
    });
    third = list->add([&](int) { calls += 'c'; });
    const Token last = list->add([&](int number) { calls += std::to_string(number); });
    list->call(1);
    EXPECT_EQ(calls, "ab1");
    list->call(2);
    EXPECT_EQ(calls, "ab1a2n");
    list.reset();
    first.reset(); // a token may outlive the list
}

TEST(HandlerList, MayBeCalledWithinACall) {
    HandlerList<int> list;
    std::string calls;
    Token own;
    own = list.add([&](int depth) {
        calls += 'a';
        if (depth > 0) {
            list.call(depth - 1);
        } else {
            own.reset();
        }
    });
    const Token other = list.add([&](int depth) { calls += std::to_string(depth); });
    list.call(1);
    EXPECT_EQ(calls, "aa01");
}

TEST(HandlerList, AsksTheNewestFirstUntilOneTakesIt) {
    AnsweringHandlerList<bool, int> list;
    std::string calls;
    const auto answering = [&](char name, bool answer) {
        return list.add([&calls, name, answer](int) {
            calls += name;
            return answer;
        });
    };
    EXPECT_TRUE(list.isEmpty());
    const Token oldest = answering('a', true);
    Token taking = answering('b', true);
    const Token newest = answering('c', false);
    EXPECT_TRUE(list.callUntil(true, 1));
    EXPECT_EQ(calls, "cb");
    taking.reset();
    EXPECT_TRUE(list.callUntil(true, 1));
    EXPECT_EQ(calls, "cbca");
    EXPECT_FALSE(list.isEmpty());
}

TEST(Lifetime, EndsWhatItsOwnerHasHandedOut) {
    struct Owner {
        int calls = 0;
        std::function<void()> held;
        Lifetime lifetime;
    };
    auto owner = std::make_unique<Owner>();
    int outlasting = 0;
    const auto later =
        owner->lifetime.guard([&outlasting](int number) { return outlasting += number; });
    EXPECT_EQ(later(2), 2);
    // It lets go of its owner, and of itself, and another one is called before it has come back.
    owner->held = owner->lifetime.guard([&] {
        ++owner->calls;
        owner.reset();
        EXPECT_EQ(later(2), 0);
    });
    owner->held();
    EXPECT_EQ(owner, nullptr);
    EXPECT_EQ(later(2), 0);
    EXPECT_EQ(outlasting, 2);
}

} // namespace
} // namespace lumetry
