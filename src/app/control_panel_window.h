#pragma once

#include "platform/template_image.h"

#include <functional>
#include <memory>

namespace lumetry {

/// What the user does in the control panel.
struct ControlPanelActions {
    std::function<void()> startFromPanel;
    std::function<void()> quitFromPanel;
};

/// The small window that says that the program is running.
class ControlPanelWindow {
public:
    ControlPanelWindow() = default;
    ControlPanelWindow(const ControlPanelWindow&) = delete;
    ControlPanelWindow& operator=(const ControlPanelWindow&) = delete;
    virtual ~ControlPanelWindow() = default;

    /// To the middle of the screen.
    virtual void center() = 0;
    /// Shows it in front of all normal windows, with the keyboard.
    virtual void makeKeyAndOrderFront() = 0;
    virtual void orderOut() = 0;
};

/// Makes the window, hidden.
using ControlPanelMaker = std::function<std::unique_ptr<ControlPanelWindow>(
    ControlPanelActions actions, const TemplateImage& icon)>;

} // namespace lumetry
