#include "support/processes/child_process.h"
#include "support/processes/process_table.h"
#include "support/processes/wait_until.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>

namespace lumetry::desktop {
namespace {

class OwnerEndedBy : public testing::TestWithParam<int> {};

TEST_P(OwnerEndedBy, LeavesNeitherProcessNorFolder) {
    ChildProcess owner({LUMETRY_DESKTOP_OWNER});
    requireUntil("the desktop's owner to say where it is",
                 [&] { return owner.standardOutput().ends_with('\n') || !owner.running(); });
    ASSERT_TRUE(owner.running()) << owner.standardError();
    auto output = owner.standardOutput();
    output.pop_back();
    const std::filesystem::path folder = output;
    const auto programs = descendants(owner.pid());

    kill(owner.pid(), GetParam());
    const auto status = owner.wait();

    ASSERT_TRUE(status && status->signal == GetParam());
    // The X server, both buses, the managers, the guard, the browser's processes, ...
    EXPECT_GE(programs.size(), 10U);
    EXPECT_TRUE(waitUntil([&] { return !std::filesystem::exists(folder); }));
    EXPECT_TRUE(waitUntil([&] { return !anyRuns(programs); }));
    EXPECT_TRUE(livingSessionProcesses(folder).empty());
}

INSTANTIATE_TEST_SUITE_P(Signals, OwnerEndedBy, testing::Values(SIGKILL, SIGTERM, SIGINT, SIGHUP),
                         [](const auto& parameter) {
                             return std::string("Signal") + std::to_string(parameter.param);
                         });

} // namespace
} // namespace lumetry::desktop
