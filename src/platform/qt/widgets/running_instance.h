#pragma once

#include <sys/types.h>

#include <functional>
#include <memory>

namespace lumetry {

/// Keeps the program to one process a session: on the session bus the first one answers to its name
/// (org.freedesktop.Application), and later ones ask it to come forward. Needs a QCoreApplication.
class RunningInstance {
public:
    enum class Role {
        first,     ///< this process is the program
        later,     ///< another one is, and has been asked to come forward
        unanswered ///< another one is, and does not answer
    };

    /// Takes the name or asks the process that has it. Without a session bus every process is the
    /// first.
    RunningInstance();
    ~RunningInstance();
    RunningInstance(const RunningInstance&) = delete;
    RunningInstance& operator=(const RunningInstance&) = delete;

    [[nodiscard]] Role role() const { return role_; }
    /// The process that is the program where another one is; 0 when the bus does not know.
    [[nodiscard]] pid_t owner() const { return owner_; }
    /// Calls the handler, from the main loop, each time the program is opened again. What the bus
    /// has started this process for is no such time.
    void onReopen(std::function<void()> handler);

private:
    class Service;

    std::unique_ptr<Service> service_;
    Role role_ = Role::first;
    pid_t owner_ = 0;
};

} // namespace lumetry
