#pragma once

#include "rig/bus.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace lumetry::desktop {

/// A row of an item's menu, as the tray would show it.
struct TrayRow {
    std::int32_t id = 0;
    std::string label; ///< empty for a separator
    bool enabled = true;

    friend bool operator==(const TrayRow&, const TrayRow&) = default;
};

/// The tray of a session's bus (StatusNotifierWatcher) as a panel has it, without a picture: it
/// takes in one item, and reads it.
class NotifierTray {
public:
    /// @param sessionBus the address of the session's message bus
    explicit NotifierTray(const std::string& sessionBus);
    ~NotifierTray();
    NotifierTray(const NotifierTray&) = delete;
    NotifierTray& operator=(const NotifierTray&) = delete;

    /// Throws std::runtime_error when none comes.
    void waitForItem();
    /// Empty when the item does not have it.
    [[nodiscard]] Variant itemProperty(const char* name) const;
    /// The strongest colour of its picture of 22 pixels, as 0xAARRGGBB.
    [[nodiscard]] std::uint32_t itemColor() const;
    /// What its menu lists.
    [[nodiscard]] std::vector<TrayRow> rows() const;
    /// Throws std::runtime_error where there is no such row.
    void choose(const std::string& label) const;

private:
    struct Taken;

    [[nodiscard]] BusObject menu() const;

    std::unique_ptr<Taken> taken_;
    std::shared_ptr<GDBusConnection> bus_;
    unsigned filter_;
};

} // namespace lumetry::desktop
