#pragma once

#include "rig/processes/child_process.h"

#include <filesystem>
#include <optional>
#include <string>

namespace lumetry::test {

/// A message bus of the test's own. While it lives, this program takes it for the session's bus and
/// for the accessibility bus.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] const std::string& address() const { return address_; }
    /// Goes with the bus; room for a test's own files.
    [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
    /// Ends the bus and starts another one at the same address.
    void restart();
    [[nodiscard]] desktop::ChildProcess& daemon() { return *daemon_; }

private:
    void start();

    std::filesystem::path folder_;
    std::string address_;
    std::optional<desktop::ChildProcess> daemon_;
};

} // namespace lumetry::test
