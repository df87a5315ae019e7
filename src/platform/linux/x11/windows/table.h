#pragma once

#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/windows/reader.h"
#include "platform/linux/x11/windows/record.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace lumetry::x11 {

/// Keeps what is known of the root's children, and lets the server say what changes, so that
/// asking again costs nothing as long as nothing has changed. It begins to listen with the first
/// question, and stops when something changes that nobody has asked for in a while.
class WindowTable {
public:
    explicit WindowTable(Connection& connection);
    WindowTable(const WindowTable&) = delete;
    WindowTable& operator=(const WindowTable&) = delete;
    ~WindowTable() = default;

    /// Reads what has changed. Call before the questions below; what they answer is valid until
    /// the next event.
    void refresh();
    /// The lowest first. Windows off the screen are among them.
    [[nodiscard]] const std::vector<xcb_window_t>& stacking() const { return root_.children; }
    [[nodiscard]] const WindowRecord* find(xcb_window_t topLevel) const;
    [[nodiscard]] const RootFacts& root() const { return root_; }
    /// Another number whenever something has changed of what the other questions answer.
    [[nodiscard]] std::size_t version() const { return version_; }
    /// False when the list of windows could not be read.
    [[nodiscard]] bool valid() const { return listening_ && !treeDirty_; }

private:
    void handle(const xcb_generic_event_t& event);
    void handleStructure(const xcb_generic_event_t& event);
    void configured(const xcb_configure_notify_event_t& event);
    void mapped(xcb_window_t id, bool viewable);
    void reparented(const xcb_reparent_notify_event_t& event);
    void destroyed(const xcb_destroy_notify_event_t& event);
    void propertyChanged(const xcb_property_notify_event_t& event);
    void shapeChanged(const xcb_generic_event_t& event);
    [[nodiscard]] bool isRelevant(xcb_atom_t property) const;

    void listen();
    void stopListening();
    void changed();
    /// @{ Whether there was anything to read.
    bool readTree();
    bool readBasics();
    bool findClients();
    bool readDetails();
    /// @}
    [[nodiscard]] WindowRecord* recordOf(xcb_window_t topLevel);
    [[nodiscard]] WindowRecord* recordOfClient(xcb_window_t client);
    static void loseClient(WindowRecord& window);
    template<class Condition>
    [[nodiscard]] std::vector<WindowRecord*> select(Condition condition);

    Connection& connection_;
    WindowReader reader_;
    RootFacts root_;
    std::unordered_map<xcb_window_t, WindowRecord> windows_;
    bool listening_ = false;
    bool treeDirty_ = true;
    bool current_ = false; ///< nothing is left to be read
    std::size_t version_ = 0;
    double lastAsked_ = 0; ///< RunLoop::now
    Token rootEvents_;
    Token events_;
};

} // namespace lumetry::x11
