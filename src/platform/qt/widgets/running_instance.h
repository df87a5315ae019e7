#pragma once

#include <functional>
#include <memory>
#include <string>

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
    /// Calls the handler, from the main loop, each time the program is opened again.
    void onReopen(std::function<void()> handler);

private:
    class Service;

    std::unique_ptr<Service> service_;
    Role role_ = Role::first;
};

} // namespace lumetry
