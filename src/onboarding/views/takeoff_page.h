#pragma once

#include "onboarding/onboarding_window.h"
#include "onboarding/views/page.h"

class QLabel;

namespace lumetry::views {

class Keycap;

/// Practice of the shortcut.
class TakeoffPage final : public Page {
public:
    explicit TakeoffPage(QWidget* parent);

    [[nodiscard]] Keycap& cap(PracticeKey key);
    void setNudge(const QString& text);

private:
    [[nodiscard]] QWidget* makeKeysRow();
    [[nodiscard]] QWidget* makeHintRow();

    Keycap* control_ = nullptr;
    Keycap* shift_ = nullptr;
    Keycap* m_ = nullptr;
    QLabel* nudge_ = nullptr;
};

} // namespace lumetry::views
