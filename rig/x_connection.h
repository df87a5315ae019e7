#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry::desktop {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
/// A reply or an event of the X server; empty when the request failed.
template<class Kind>
using Reply = std::unique_ptr<Kind, FreeReply>;

/// A test's own connection to an X server, apart from those of the programs under test.
class XConnection {
public:
    /// @param display such as ":5"
    /// Throws std::runtime_error when no server answers there.
    explicit XConnection(const std::string& display);
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    [[nodiscard]] xcb_connection_t* get() const { return connection_; }
    [[nodiscard]] xcb_window_t root() const { return screen_->root; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }

    /// A pixel of the root window's depth in a colour (0xRRGGBB; what stands before is left out).
    [[nodiscard]] std::uint32_t pixelOf(std::uint32_t color) const;
    /// The colour of such a pixel, as 0xFFRRGGBB.
    [[nodiscard]] std::uint32_t colorOf(std::uint32_t pixel) const;

    [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
    /// The bytes of a property; absent when the window or the property does not exist.
    [[nodiscard]] std::optional<std::string> textProperty(xcb_window_t window,
                                                          std::string_view name) const;
    /// The elements of a property of 32-bit values; empty where there is none.
    [[nodiscard]] std::vector<std::uint32_t> numbersProperty(xcb_window_t window,
                                                             std::string_view name) const;
    /// The window that owns a selection; XCB_NONE where none does.
    [[nodiscard]] xcb_window_t selectionOwner(std::string_view selection) const;
    /// Returns once the server has carried out everything asked of it so far.
    void sync() const;

private:
    xcb_connection_t* connection_ = nullptr;
    xcb_screen_t* screen_ = nullptr;
    xcb_visualtype_t visual_{}; ///< of the root window
};

} // namespace lumetry::desktop
