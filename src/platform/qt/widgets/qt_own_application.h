#pragma once

#include "platform/own_application.h"

namespace lumetry {

/// This program on Qt. Needs a QGuiApplication.
class QtOwnApplication final : public OwnApplication {
public:
    [[nodiscard]] std::string bundlePath() override;
    /// Nothing to do: a window is in the task bar for as long as it is open, if it is of that kind.
    void setActivationPolicy(ActivationPolicy /*policy*/) override {}
    void activateIgnoringOtherApps() override;
    [[nodiscard]] Token addDidBecomeActiveObserver(std::function<void()> handler) override;
    void terminate() override;
    void openAddress(std::string_view address) override;
    void startProcess(const std::string& executable,
                      const std::vector<std::string>& arguments) override;
};

} // namespace lumetry
