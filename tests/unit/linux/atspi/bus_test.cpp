#include "atspi_test.h"

#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/tree/queries.h"

#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

namespace lumetry::test {
namespace {

using atspi::deadlineIn;
using atspi::Message;
using atspi::ObjectReference;
using atspi::Outcome;
using atspi::Question;
using atspi::requestFor;

/// Long enough that a test which needs it has gone wrong.
constexpr double generousSeconds = 30;
/// For what is expected not to answer.
constexpr double shortSeconds = 0.05;

class Bus : public AtspiTest {
protected:
    [[nodiscard]] static ObjectReference at(const ScriptedApplication& application,
                                            const std::string& path) {
        return {application.name(), path};
    }

    atspi::Bus requests{loop, std::chrono::hours(1)};
};

TEST_F(Bus, RepliesComeInTheOrderOfTheirRequestsAfterOneWait) {
    ScriptedTree tree;
    std::vector<Message> batch;
    constexpr int count = 3000;
    for (int number = 0; number < count; ++number) {
        tree["/" + std::to_string(number)].name = std::to_string(number);
    }
    auto& application = start(tree);
    batch.reserve(count + 4);
    for (int number = 0; number < count; ++number) {
        batch.push_back(
            requestFor({at(application, "/" + std::to_string(number)), Question::name}));
    }
    batch.push_back(requestFor({at(application, "/missing"), Question::name}));
    batch.push_back(requestFor({{":1.99999", "/gone"}, Question::name}));
    batch.push_back(requestFor({{"no name", "/x"}, Question::name}));
    batch.push_back(requestFor({{application.name(), "no path"}, Question::name}));

    const auto replies = requests.exchange(std::move(batch), deadlineIn(generousSeconds));

    for (int number = 0; number < count; ++number) {
        ASSERT_EQ(atspi::textOf(replies[static_cast<std::size_t>(number)]), std::to_string(number));
    }
    EXPECT_EQ(replies[count].outcome, Outcome::refused);
    EXPECT_EQ(replies[count + 1].outcome, Outcome::gone);
    EXPECT_EQ(replies[count + 2].outcome, Outcome::refused) << "libdbus would abort over it";
    EXPECT_EQ(replies[count + 3].outcome, Outcome::refused);
    EXPECT_EQ(requests.waits(), 1);
    EXPECT_EQ(requests.requests(), count + 3) << "it is asked for a way past the bus, too";
}

// One application that stands still must not hold up every movement of the pointer.
TEST_F(Bus, WhoDoesNotAnswerIsLeftAloneUntilItSpeaks) {
    ScriptedTree tree;
    tree["/x"].name = "x";
    auto& frozen = start(tree);
    auto& lively = start(tree);
    frozen.freeze();
    std::vector<Message> both;
    both.push_back(requestFor({at(frozen, "/x"), Question::name}));
    both.push_back(requestFor({at(lively, "/x"), Question::name}));
    const auto replies = requests.exchange(std::move(both), deadlineIn(shortSeconds));
    EXPECT_EQ(replies[0].outcome, Outcome::silent);

    const auto sent = requests.requests();
    const auto waits = requests.waits();
    EXPECT_EQ(
        requests
            .exchange(requestFor({at(frozen, "/x"), Question::name}), deadlineIn(generousSeconds))
            .outcome,
        Outcome::silent);
    EXPECT_EQ(requests.requests(), sent) << "it is not asked again at once";
    EXPECT_EQ(requests.waits(), waits);
    EXPECT_EQ(textOf(requests.exchange(requestFor({at(lively, "/x"), Question::name}),
                                       deadlineIn(generousSeconds))),
              "x")
        << "others are";

    frozen.thaw();
    EXPECT_TRUE(desktop::waitUntil([&] {
        return textOf(requests.exchange(requestFor({at(frozen, "/x"), Question::name}),
                                        deadlineIn(generousSeconds))) == "x";
    })) << "its late answer shows that it is awake, and is not taken for another one";
}

// An application that is asked much is reached without the bus between, where it allows that.
TEST_F(Bus, GoesStraightToAnApplicationThatIsAskedMuch) {
    ScriptedTree tree;
    tree["/x"].name = "x";
    auto& onTheBus = start(tree);
    tree["/x"].name = "y";
    tree[rootPath].directAddress = "unix:path=" + (bus.folder() / "direct").string();
    auto& reachable = start(tree);
    const auto askBoth = [&](double seconds) {
        std::vector<Message> both;
        both.push_back(requestFor({at(reachable, "/x"), Question::name}));
        both.push_back(requestFor({at(onTheBus, "/x"), Question::name}));
        return requests.exchange(std::move(both), deadlineIn(seconds));
    };
    const auto bothAnswer = [&] {
        const auto replies = askBoth(generousSeconds);
        return textOf(replies[0]) == "y" && textOf(replies[1]) == "x";
    };
    ASSERT_TRUE(bothAnswer());
    EXPECT_EQ(reachable.directRequests(), 0);
    ASSERT_TRUE(desktop::waitUntil([&] {
        EXPECT_TRUE(bothAnswer());
        return reachable.directRequests() > 0;
    }));
    EXPECT_EQ(onTheBus.directRequests(), 0);

    std::vector<std::string> got;
    requests.send(
        requestFor({at(reachable, "/x"), Question::name}),
        [&](const atspi::Reply& reply) { got.push_back(textOf(reply).value_or("nothing")); });
    EXPECT_TRUE(loop.runUntil([&] { return got == std::vector<std::string>{"y"}; }));

    reachable.freeze();
    const auto replies = askBoth(shortSeconds);
    EXPECT_EQ(replies[0].outcome, Outcome::silent);
    EXPECT_EQ(textOf(replies[1]), "x");
    reachable.thaw();
    EXPECT_TRUE(desktop::waitUntil(bothAnswer));

    reachable.end();
    EXPECT_TRUE(
        desktop::waitUntil([&] { return askBoth(generousSeconds)[0].outcome == Outcome::gone; }));
    EXPECT_TRUE(loop.runUntil([&] { return !loop.watches(); }));
}

// What an application gives as its address must neither start a program nor lead off the machine.
TEST_F(Bus, StaysOnTheBusWhereAnApplicationGivesNoSocketOfThisMachine) {
    const auto trace = bus.folder() / "trace";
    for (const std::string& address :
         {"unixexec:path=/usr/bin/touch,argv1=" + trace.string(),
          "unix:path=/nowhere;unixexec:path=/usr/bin/touch,argv1=" + trace.string(),
          std::string("tcp:host=127.0.0.1,port=1"), "unix:path=" + trace.string(),
          std::string("words")}) {
        ScriptedTree tree;
        tree["/x"].name = "x";
        tree[rootPath].answers["GetApplicationBusAddress"] = text(address);
        auto& application = start(tree);
        for (int time = 0; time < 200; ++time) {
            ASSERT_EQ(textOf(requests.exchange(requestFor({at(application, "/x"), Question::name}),
                                               deadlineIn(generousSeconds))),
                      "x")
                << address;
        }
    }
    EXPECT_FALSE(std::filesystem::exists(trace));
    EXPECT_FALSE(atspi::isLocalSocket("unixexec:path=/usr/bin/touch"));
    EXPECT_FALSE(atspi::isLocalSocket("tcp:host=127.0.0.1,port=1"));
    EXPECT_TRUE(atspi::isLocalSocket("unix:abstract=/tmp/at-spi"));
}

TEST_F(Bus, IsFoundAgainAfterItWentAway) {
    ScriptedTree tree;
    tree["/x"].name = "x";
    auto& before = start(tree);
    ASSERT_EQ(
        requests
            .exchange(requestFor({at(before, "/x"), Question::name}), deadlineIn(generousSeconds))
            .outcome,
        Outcome::answered);
    const auto generation = requests.generation();

    applications.clear();
    bus.restart();
    EXPECT_EQ(
        requests.exchange(requestFor({{":1.1", "/x"}, Question::name}), deadlineIn(generousSeconds))
            .outcome,
        Outcome::silent);

    auto& after = start(tree);
    EXPECT_TRUE(desktop::waitUntil([&] {
        return textOf(requests.exchange(requestFor({at(after, "/x"), Question::name}),
                                        deadlineIn(generousSeconds))) == "x";
    }));
    EXPECT_EQ(requests.generation(), generation + 1);
}

TEST_F(Bus, ContinuesWithoutBlockingAndWatchesOnlyMeanwhile) {
    ScriptedTree tree;
    tree["/x"].name = "x";
    auto& application = start(tree);
    std::vector<std::string> got;
    const auto note = [&](const atspi::Reply& reply) {
        got.push_back(atspi::textOf(reply).value_or("nothing"));
    };
    requests.send(requestFor({at(application, "/x"), Question::name}),
                  [&](const atspi::Reply& reply) {
                      note(reply);
                      requests.send(requestFor({at(application, "/x"), Question::name}), note);
                  });
    EXPECT_TRUE(got.empty());
    EXPECT_TRUE(loop.watches());
    EXPECT_TRUE(loop.runUntil([&] { return !loop.watches(); }));
    EXPECT_EQ(got, (std::vector<std::string>{"x", "x"}));

    application.freeze();
    requests.send(requestFor({at(application, "/x"), Question::name}), note);
    application.end();
    EXPECT_TRUE(loop.runUntil([&] { return !loop.watches(); })) << "the bus says that it is gone";
    EXPECT_EQ(got.size(), 3);

    auto& next = start(tree);
    next.freeze();
    requests.send(requestFor({at(next, "/x"), Question::name}), note);
    bus.daemon().terminate();
    EXPECT_TRUE(loop.runUntil([&] { return !loop.watches(); })) << "the bus itself is gone";
    EXPECT_EQ(got.size(), 4);
    EXPECT_EQ(got.back(), "nothing");
}

TEST_F(Bus, TrustIsExplainedInOneSentence) {
    struct Case {
        std::string name;
        std::function<void()> arrange;
        std::string expected; ///< part of the sentence; empty when there is nothing to say
    };
    const std::vector<Case> cases = {
        {"no session bus",
         [] {
             setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
             unsetenv("AT_SPI_BUS_ADDRESS");
         },
         "DBUS_SESSION_BUS_ADDRESS"},
        {"no accessibility service",
         [&] { setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1); }, "at-spi2-core"},
        {"switched off", [&] { announce(false); }, "dbus-send --session"},
        {"no accessibility bus", [&] { announce(true); }, "does not answer"},
        {"all well", [&] { setenv("AT_SPI_BUS_ADDRESS", bus.address().c_str(), 1); }, ""},
    };
    for (const Case& each : cases) {
        each.arrange();
        AtspiAccessibility fresh(windows, loop);
        const std::string problem = fresh.trustProblem();
        EXPECT_EQ(fresh.isProcessTrusted(), each.expected.empty()) << each.name;
        if (each.expected.empty()) {
            EXPECT_EQ(problem, "") << each.name;
        } else {
            EXPECT_NE(problem.find(each.expected), std::string::npos) << each.name << problem;
        }
    }
}

} // namespace
} // namespace lumetry::test
