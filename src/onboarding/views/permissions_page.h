#pragma once

#include "onboarding/onboarding_window.h"
#include "onboarding/views/page.h"

namespace lumetry::views {

class PermissionCard;

/// Why the permissions are wanted, and a card for each.
class PermissionsPage final : public Page {
public:
    PermissionsPage(OnboardingActions& actions, QWidget* parent);

    [[nodiscard]] PermissionCard& card(Permission permission);
    [[nodiscard]] std::vector<QAbstractButton*> buttons() const override;

private:
    [[nodiscard]] QWidget* makeLeftColumn();
    [[nodiscard]] QWidget* makeFooter();

    PermissionCard* accessibility_ = nullptr;
    PermissionCard* screenRecording_ = nullptr;
};

} // namespace lumetry::views
