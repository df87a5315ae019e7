#pragma once

#include "onboarding/views/page.h"

namespace lumetry::views {

/// What Lumetry is.
class WelcomePage final : public Page {
public:
    explicit WelcomePage(QWidget* parent);
};

} // namespace lumetry::views
