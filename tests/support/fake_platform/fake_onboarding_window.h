#pragma once

#include "onboarding/onboarding_window.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace lumetry {

/// What an onboarding window was told, and a hand to use it.
struct OnboardingWindowRecord {
    OnboardingActions* actions = nullptr;
    bool visible = false;
    bool inFront = false;
    int centered = 0;
    std::optional<OnboardingStep> step;
    bool animated = false;
    std::string primary;
    bool primaryEnabled = false;
    std::map<Permission, CardState> cards;
    std::vector<Permission> pops;
    std::map<PracticeKey, bool> keys; ///< of the page on screen
    std::string nudge;                ///< of the page on screen

    /// As its close button does.
    void close();
};

class FakeOnboardingWindow final : public OnboardingWindow {
public:
    explicit FakeOnboardingWindow(std::shared_ptr<OnboardingWindowRecord> record)
        : record_(std::move(record)) {}

    [[nodiscard]] bool isVisible() const override { return record_->visible; }
    void center() override { ++record_->centered; }
    void makeKeyAndOrderFront() override { record_->visible = record_->inFront = true; }
    void orderBack() override { record_->inFront = false; }
    void close() override { record_->close(); }
    void showStep(OnboardingStep step, bool animated) override;
    void setPrimary(const std::string& title, bool enabled) override;
    void setCard(Permission permission, const CardState& state) override {
        record_->cards[permission] = state;
    }
    void pop(Permission permission) override { record_->pops.push_back(permission); }
    void setKeyActive(PracticeKey key, bool active) override { record_->keys[key] = active; }
    void setNudge(const std::string& text) override { record_->nudge = text; }

private:
    std::shared_ptr<OnboardingWindowRecord> record_;
};

/// Makes windows that keep their records in the list.
[[nodiscard]] OnboardingWindowMaker
fakeOnboardingWindows(std::vector<std::shared_ptr<OnboardingWindowRecord>>& made);

} // namespace lumetry
