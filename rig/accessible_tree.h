#pragma once

#include "base/geometry.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// NOLINTNEXTLINE(bugprone-reserved-identifier): GIO named it so
using GDBusConnection = struct _GDBusConnection;

namespace lumetry::desktop {

/// Some of AT-SPI's states, by their numbers.
enum class AccessibleState : std::uint8_t {
    checked = 4,
    sensitive = 24, ///< not greyed out
    showing = 25,   ///< it and all that it stands in
};

/// An element of an application's accessibility tree, asked over the accessibility bus directly:
/// the truth that tests hold Lumetry's readings against. Nothing is cached; an element or
/// application that is gone gives empty answers.
class Accessible {
public:
    /// AT-SPI's name of the role, such as "push button".
    [[nodiscard]] std::string role() const;
    [[nodiscard]] std::string name() const;
    /// In pixels of the root window, y downwards. Absent where the element has no place.
    [[nodiscard]] std::optional<Rect> extents() const;
    [[nodiscard]] std::vector<Accessible> children() const;
    [[nodiscard]] bool is(AccessibleState state) const;
    [[nodiscard]] bool showing() const { return is(AccessibleState::showing); }
    /// Does what a click on it does.
    void press() const;

    /// The first of this element and its descendants, in depth-first order, that fits.
    [[nodiscard]] std::optional<Accessible>
    find(const std::function<bool(const Accessible&)>& fits) const;
    [[nodiscard]] std::optional<Accessible> find(const std::string& role,
                                                 const std::string& name) const;
    /// The tree from here on, one element a line, for the message of a failing test.
    [[nodiscard]] std::string describe(int depth = 20) const;

private:
    friend class AccessibleTree;
    Accessible(std::shared_ptr<GDBusConnection> bus, std::string application, std::string path)
        : bus_(std::move(bus)), application_(std::move(application)), path_(std::move(path)) {}

    std::shared_ptr<GDBusConnection> bus_;
    std::string application_;
    std::string path_;
};

/// The applications on the accessibility bus of a private desktop.
class AccessibleTree {
public:
    /// @param busAddress PrivateDesktop::accessibilityBusAddress
    /// Throws std::runtime_error when the bus does not answer.
    explicit AccessibleTree(const std::string& busAddress);

    [[nodiscard]] std::vector<Accessible> applications() const;
    /// By the name the application goes by on the bus. Throws std::runtime_error when none of that
    /// name appears.
    [[nodiscard]] Accessible waitForApplication(const std::string& name) const;
    /// Waits for an element of that application that is shown. Throws std::runtime_error, with the
    /// tree as it is, when none appears.
    /// @param name empty: any
    [[nodiscard]] Accessible waitFor(const std::string& application, const std::string& role,
                                     const std::string& name) const;

private:
    std::shared_ptr<GDBusConnection> bus_;
};

} // namespace lumetry::desktop
