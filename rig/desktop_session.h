#pragma once

#include "rig/desktop_guard.h"
#include "rig/processes/child_process.h"
#include "rig/processes/wait_until.h"

#include <deque>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumetry::desktop {

enum class AccessibilityBus {
    none,     ///< no accessibility bus at all
    disabled, ///< the bus runs, but no assistive technology is announced (IsEnabled is false)
    enabled,
};

/// What every private desktop has, whatever shows its windows: a session bus and an accessibility
/// bus, and a home folder that starts empty. When the object is destroyed, or the program ends in
/// whatever way, every process of the desktop ends and its folder goes.
class DesktopSession {
public:
    DesktopSession(const DesktopSession&) = delete;
    DesktopSession& operator=(const DesktopSession&) = delete;

    /// Removed with the desktop; room for a test's own files.
    [[nodiscard]] const std::filesystem::path& folder() const { return guard_.folder(); }
    /// The folder that programs find as HOME.
    [[nodiscard]] std::filesystem::path home() const { return guard_.folder() / "home"; }
    /// All that a program of the desktop finds in its environment.
    [[nodiscard]] const Environment& environment() const { return environment_; }
    [[nodiscard]] const std::string& sessionBusAddress() const {
        return environment_.at("DBUS_SESSION_BUS_ADDRESS");
    }
    /// Empty when the desktop has none.
    [[nodiscard]] const std::string& accessibilityBusAddress() const {
        return accessibilityBusAddress_;
    }

    /// Starts a program in the desktop.
    /// @param arguments the program (found as by requireProgram) and its arguments
    /// @param variables added to the desktop's environment
    [[nodiscard]] ChildProcess start(const std::vector<std::string>& arguments,
                                     const Environment& variables = {});
    /// Announces or withdraws an assistive technology (org.a11y.Status.IsEnabled).
    void setAccessibilityEnabled(bool enabled) const;
    [[nodiscard]] bool accessibilityEnabled() const;

    /// Ends the session bus, and with it whatever cannot do without.
    void stopSessionBus();

    /// Has this very program take part in the desktop, for tests that use the backends in process:
    /// puts the desktop's variables into its environment. Once for the whole process.
    void join() const;

protected:
    /// @param variables what the programs of this kind of desktop find in their environment besides
    explicit DesktopSession(const Environment& variables);
    ~DesktopSession();

    void setVariable(const std::string& name, const std::string& value) {
        environment_[name] = value;
    }
    void startSessionBus();
    void startAccessibility(AccessibilityBus kind);
    ChildProcess& startService(const std::vector<std::string>& arguments,
                               int inheritedDescriptor = -1);
    /// Ends the programs while the members of a derived class are still there.
    void endDesktop() { guard_.endDesktop(); }

private:
    DesktopGuard guard_;
    Environment environment_;
    std::string accessibilityBusAddress_;
    /// Their places in memory last: programs are pointed to.
    std::deque<ChildProcess> services_;
    ChildProcess* sessionBus_ = nullptr;
};

/// Waits for a program of a desktop to be ready, or to have failed.
template<class Condition>
void awaitService(ChildProcess& service, const std::string& sign, Condition&& condition) {
    requireUntil(sign, [&] {
        if (!service.running()) {
            throw std::runtime_error(service.name() +
                                     " ended while the desktop was started; it "
                                     "wrote: " +
                                     service.standardOutput() + service.standardError());
        }
        return condition();
    });
}

/// Ends a service, and returns when it has ended.
void stopService(ChildProcess& service);

} // namespace lumetry::desktop
