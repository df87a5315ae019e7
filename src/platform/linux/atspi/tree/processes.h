#pragma once

#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/message.h"

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace lumetry::atspi {

/// Which process is which application on the bus. This process is never among them: it could not
/// answer while it waits for the answer.
class Processes {
public:
    /// @param processes the folder of the system's processes
    explicit Processes(Bus& bus, std::filesystem::path processes = "/proc");

    /// The roots of the process's applications, asked for if none is known.
    [[nodiscard]] std::vector<ObjectReference> rootsOf(pid_t pid, Deadline deadline);
    /// The same without waiting: the continuation gets them, at once or later.
    void findRootsOf(pid_t pid,
                     std::function<void(const std::vector<ObjectReference>&)> continuation);
    /// The process behind a connection's name; absent where that cannot be told.
    [[nodiscard]] std::optional<pid_t> processOf(const std::string& name, Deadline deadline);
    /// An application of that name is gone.
    void forget(const std::string& name);

    /// Between these two the bus is asked only once about a process that has no application.
    void beginSample() { ++samples_; }
    void endSample() {
        if (--samples_ == 0) {
            askedInVain_.clear();
        }
    }

private:
    /// Who has a connection.
    struct Owner {
        pid_t pid = 0;
        /// Where that is only the proxy of a sandbox: the control group of those it speaks for.
        std::string sandbox;
    };

    void dropWhenReconnected();
    [[nodiscard]] std::vector<ObjectReference> knownRootsOf(pid_t pid) const;
    [[nodiscard]] std::vector<std::string> takeApplications(const Reply& reply);
    void takeProcess(const std::string& name, const Reply& reply);

    Bus& bus_;
    std::filesystem::path processes_;
    pid_t ownPid_;
    std::uint64_t generation_ = 0;
    std::map<std::string, Owner> owners_; ///< by the connection's name
    /// Of all applications, as the registry gave them last.
    std::vector<ObjectReference> roots_;
    int samples_ = 0;
    std::set<pid_t> askedInVain_; ///< in this sample
};

} // namespace lumetry::atspi
