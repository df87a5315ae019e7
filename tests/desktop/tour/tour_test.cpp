#include "rig/desktop_guard.h"
#include "rig/processes/child_process.h"
#include "rig/processes/process_table.h"
#include "rig/processes/wait_until.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <sstream>
#include <string>

namespace lumetry::desktop {
namespace {

/// A tour that leaves its pictures in a folder that goes with the test.
struct RunningTour {
    DesktopGuard room;
    std::filesystem::path pictures = room.folder() / "pictures";
    ChildProcess process{{LUMETRY_TOUR, LUMETRY_PROGRAM, pictures.string()}};
};

TEST(Tour, LeavesAPictureAndALineOfEachStop) {
    RunningTour tour;
    constexpr auto deadline = std::chrono::minutes(3);
    const auto status = tour.process.wait(deadline);
    ASSERT_TRUE(status && status->code == 0) << tour.process.standardError();

    std::istringstream output(tour.process.standardOutput());
    std::size_t lines = 0;
    for (std::string line; std::getline(output, line); ++lines) {
        SCOPED_TRACE(line);
        const auto nameEnd = line.find("  ");
        ASSERT_NE(nameEnd, std::string::npos);
        EXPECT_TRUE(std::filesystem::exists(line.substr(0, nameEnd)));
        EXPECT_LT(nameEnd + 2, line.size());
    }
    // Seven over an application, four over a page, six of the onboarding, panel and two trays.
    EXPECT_EQ(lines, 23U);
}

class TourEndedBy : public testing::TestWithParam<int> {};

TEST_P(TourEndedBy, LeavesNoProcess) {
    RunningTour tour;
    requireUntil("the first stop",
                 [&] { return !tour.process.standardOutput().empty() || !tour.process.running(); });
    ASSERT_TRUE(tour.process.running()) << tour.process.standardError();
    const auto programs = descendants(tour.process.pid());
    // At least the X server, two buses, two managers, the application, Lumetry and the guard.
    EXPECT_GE(programs.size(), 8U);

    kill(tour.process.pid(), GetParam());

    EXPECT_TRUE(tour.process.wait());
    EXPECT_TRUE(waitUntil([&] { return !anyRuns(programs); }));
}

INSTANTIATE_TEST_SUITE_P(Signals, TourEndedBy, testing::Values(SIGKILL, SIGTERM, SIGINT, SIGHUP),
                         [](const auto& parameter) {
                             return std::string("Signal") + std::to_string(parameter.param);
                         });

} // namespace
} // namespace lumetry::desktop
