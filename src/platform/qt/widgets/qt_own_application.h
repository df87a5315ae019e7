#pragma once

#include "platform/own_application.h"

#include <QProcessEnvironment>

namespace lumetry {

/// What this process was started with, as other programs are to find it: without what concerned
/// its start alone. To be asked for before anything changes the environment.
[[nodiscard]] QProcessEnvironment environmentForOthers();

/// This program on Qt. Needs a QGuiApplication.
class QtOwnApplication final : public OwnApplication {
public:
    /// @param environment that of the programs it starts
    /// @param resumed what isResumed says
    QtOwnApplication(const QProcessEnvironment& environment, bool resumed)
        : environment_(environment), resumed_(resumed) {}

    [[nodiscard]] std::string bundlePath() override;
    [[nodiscard]] bool isResumed() override { return resumed_; }
    /// Nothing to do: a window is in the task bar for as long as it is open, if it is of that kind.
    void setActivationPolicy(ActivationPolicy /*policy*/) override {}
    void activateIgnoringOtherApps() override;
    [[nodiscard]] Token addDidBecomeActiveObserver(std::function<void()> handler) override;
    void terminate() override;
    void openAddress(std::string_view address) override;
    void startProcess(const std::string& executable,
                      const std::vector<std::string>& arguments) override;

private:
    void startDetached(const QString& program, const QStringList& arguments) const;

    QProcessEnvironment environment_;
    bool resumed_;
};

} // namespace lumetry
