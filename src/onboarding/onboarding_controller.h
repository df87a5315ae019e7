#pragma once

#include "base/lifetime.h"
#include "base/token.h"
#include "onboarding/onboarding_window.h"
#include "platform/input.h"
#include "platform/shell_platform.h"

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace lumetry {

/// Set once the onboarding has been gone through.
inline constexpr std::string_view onboardedKey = "lumetry.onboarded";

/// Leads through the first start: welcome, the two permissions, practice of the shortcut. Decides
/// what its window shows; made once for the whole run of the program.
class OnboardingController final : private OnboardingActions {
public:
    /// Makes no window yet. The platform outlives it.
    OnboardingController(const ShellPlatform& platform, OnboardingWindowMaker makeWindow);
    ~OnboardingController() override = default;

    /// Opens the window for the whole way: at the permissions when reading other applications is
    /// allowed already or the way was gone before, else at the welcome. A window on screen keeps
    /// its step and comes to the front.
    void show();
    /// Opens the window at the practice.
    void showTakeoff();
    /// Ends the onboarding: remembers that, lights the keys, and half a second later calls onStart.
    /// Does nothing while it is ending already.
    void complete();

    /// None before the first show.
    [[nodiscard]] OnboardingWindow* window() { return window_.get(); }
    [[nodiscard]] bool isWindowVisible() const { return window_ && window_->isVisible(); }
    /// From 0 to 2.
    [[nodiscard]] int step() const { return step_; }

    /// Called when the onboarding is complete.
    std::function<void()> onStart;
    /// Called when the user asks for a restart of the program.
    std::function<void()> onReopen;

private:
    void primaryTapped() override;
    void backTapped() override;
    void grantAX() override;
    void grantSR() override;
    void windowWillClose() override;

    void build();
    void beginDockPresence();
    /// What both ways to open the window end with.
    void present();
    void setStep(int step, bool animated);
    /// Reads both permissions anew and shows what they are.
    void refresh();
    void updateCards(bool ax, bool sr);
    void updatePrimary(bool ax, bool sr);
    void noticeGrants(bool ax, bool sr);
    void bringForward();

    void syncTakeoffKeys(ModifierFlags modifierFlags);
    void pressM();
    void installTakeoffMonitors();
    void removeTakeoffMonitors() { takeoffMonitors_.clear(); }

    const ShellPlatform& platform_;
    OnboardingWindowMaker makeWindow_;
    std::unique_ptr<OnboardingWindow> window_;
    Token timer_;          ///< of the refresh while the window is open
    Token activeObserver_; ///< of the program's becoming active
    bool lastAX_ = false;  ///< what the last refresh saw
    bool lastSR_ = false;
    int step_ = 0;
    std::vector<Token> takeoffMonitors_; ///< of the keys at the practice
    bool completing_ = false;
    bool srAsked_ = false; ///< Screen Recording was asked for since the program started
    bool primaryIsReopen_ = false;
    Lifetime lifetime_;
};

} // namespace lumetry
