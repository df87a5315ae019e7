#pragma once

#include "platform/template_image.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace lumetry {

/// A row of a menu (NSMenuItem).
struct MenuItem {
    std::string title;         ///< UTF-8; empty for a separator
    std::string keyEquivalent; ///< the key that chooses it with Command while the menu is open
    bool separator = false;
    bool enabled = true;
    std::function<void()> action; ///< empty for rows that only tell something
};

/// A place in the status bar (NSStatusItem); it goes with the object.
class StatusItem {
public:
    StatusItem() = default;
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;
    virtual ~StatusItem() = default;

    /// Tinted to the colour of the bar. Nothing happens where the item has no button.
    virtual void setImage(const TemplateImage& image) = 0;
    /// Nothing happens where the item has no button.
    virtual void setToolTip(const std::string& text) = 0;
    /// Shown when the item is clicked.
    virtual void setMenu(std::vector<MenuItem> menu) = 0;
};

/// The menu bar or tray (NSStatusBar).
class StatusBar {
public:
    StatusBar() = default;
    StatusBar(const StatusBar&) = delete;
    StatusBar& operator=(const StatusBar&) = delete;
    virtual ~StatusBar() = default;

    /// Whether there is a bar now.
    [[nodiscard]] virtual bool isPresent() = 0;
    /// A new item as wide as its image. Where there is no bar yet it shows up as soon as there is
    /// one.
    [[nodiscard]] virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
};

} // namespace lumetry
