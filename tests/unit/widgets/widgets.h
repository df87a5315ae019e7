#pragma once

#include "onboarding/onboarding_window.h"

#include <QAbstractButton>
#include <QApplication>
#include <QWidget>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace lumetry {

/// Has a QApplication there while the tests of a program run.
class ApplicationEnvironment : public testing::Environment {
public:
    void SetUp() override { application_.emplace(argc_, argv_.data()); }
    void TearDown() override { application_.reset(); }

private:
    int argc_ = 1;
    std::string name_ = "test";
    std::vector<char*> argv_ = {name_.data(), nullptr};
    std::optional<QApplication> application_;
};

/// Makes all that moves in the widget look as it does that long after it began. What is over by
/// then has ended.
void passTime(QWidget& widget, int milliseconds);
/// Shows the window at that step, with the keyboard and with everything in its place.
void openSettled(OnboardingWindow& window, OnboardingStep step, const std::string& primary);
/// The window of that title.
[[nodiscard]] QWidget* windowTitled(const QString& title);
/// The widget's place in its window.
[[nodiscard]] QRect placeOf(const QWidget& widget);
/// The one that assistive technology knows by that name; null without any.
[[nodiscard]] QAbstractButton* buttonNamed(const QWidget& window, const QString& name);

/// The visible widgets of that class, in the order in which they were made.
template<typename T>
[[nodiscard]] std::vector<T*> visibleWidgets(const QWidget& window) {
    std::vector<T*> found;
    for (QWidget* const child : window.findChildren<QWidget*>()) {
        if (auto* const match = dynamic_cast<T*>(child); match && match->isVisible()) {
            found.push_back(match);
        }
    }
    return found;
}

} // namespace lumetry
