#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lumetry {

/// The steps of the onboarding in order; their numbers are those of OnboardingController::step.
enum class OnboardingStep { welcome, permissions, takeoff };
inline constexpr int onboardingStepCount = 3;

enum class Permission { accessibility, screenRecording };

/// What a permission's card is coloured with.
enum class CardTint {
    accent, ///< not granted
    green,  ///< granted
    orange, ///< asked for, and to be seen after a restart
};

struct CardState {
    CardTint icon = CardTint::accent;
    bool grantButtonShown = true;
    /// What stands in the button's place, in the icon's tint; absent while the button does.
    std::optional<std::string> done;

    friend bool operator==(const CardState&, const CardState&) = default;
};

/// The keys of the shortcut.
enum class PracticeKey { control, shift, m };

/// What the user does in the onboarding window.
class OnboardingActions {
public:
    OnboardingActions() = default;
    OnboardingActions(const OnboardingActions&) = delete;
    OnboardingActions& operator=(const OnboardingActions&) = delete;
    virtual ~OnboardingActions() = default;

    virtual void primaryTapped() = 0;
    virtual void backTapped() = 0;
    /// The "Grant" button of the Accessibility card.
    virtual void grantAX() = 0;
    /// The "Grant" button of the Screen Recording card.
    virtual void grantSR() = 0;
    /// The window is about to close, whoever closes it.
    virtual void windowWillClose() = 0;
};

/// The onboarding window: how it looks, without any decision of its own.
class OnboardingWindow {
public:
    OnboardingWindow() = default;
    OnboardingWindow(const OnboardingWindow&) = delete;
    OnboardingWindow& operator=(const OnboardingWindow&) = delete;
    virtual ~OnboardingWindow() = default;

    [[nodiscard]] virtual bool isVisible() const = 0;
    /// To the middle of the screen.
    virtual void center() = 0;
    /// Shows it in front of the other windows, with the keyboard.
    virtual void makeKeyAndOrderFront() = 0;
    /// Behind the windows of other applications.
    virtual void orderBack() = 0;
    /// As its close button does.
    virtual void close() = 0;

    /// Replaces the page by a new one of that step, whose views enter one after another, and moves
    /// the step indicator. The back button is hidden at the first step.
    /// @param animated the pages fade into each other; else the old one goes at once
    virtual void showStep(OnboardingStep step, bool animated) = 0;
    virtual void setPrimary(const std::string& title, bool enabled) = 0;
    /// Kept for the pages to come.
    virtual void setCard(Permission permission, const CardState& state) = 0;
    /// Marks a fresh grant on the card's icon.
    virtual void pop(Permission permission) = 0;
    /// Nothing happens on pages without keys.
    virtual void setKeyActive(PracticeKey key, bool active) = 0;
    /// Nothing happens on pages without that line.
    virtual void setNudge(const std::string& text) = 0;
};

/// Makes the window, hidden. The actions outlive it.
using OnboardingWindowMaker =
    std::function<std::unique_ptr<OnboardingWindow>(OnboardingActions& actions)>;

} // namespace lumetry
