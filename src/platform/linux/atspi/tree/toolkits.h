#pragma once

#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/tree/text_attributes.h"
#include "platform/linux/atspi/tree/whole_points.h"

#include <atspi/atspi-constants.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace lumetry::atspi {

/// What an application is built with, as far as its answers differ.
enum class Toolkit : std::uint8_t { gtk, gtk4, libreOffice, chromium, gecko, qt, java, other };

/// By the names that an application's root gives of its toolkit and of itself.
[[nodiscard]] Toolkit toolkitNamed(std::string_view name, std::string_view application);

/// What applications of a toolkit are used to.
struct Habits {
    /// In which coordinates they are asked for places: the screen's or, where they know nothing of
    /// that, the window's.
    AtspiCoordType coordinates = ATSPI_COORD_TYPE_SCREEN;
    /// The state of what is to be seen.
    AtspiStateType shown = ATSPI_STATE_SHOWING;
    /// Which of an object's children that are not to be seen are listed among them.
    enum class Unseen : std::uint8_t {
        none,
        withoutPlace, ///< those of which no place is told
        any,          ///< also those that keep a place
    } unseenChildren = Unseen::any;
    /// Asked for more text than there is they give what there is, without a word in their logs.
    bool clipsText = false;
    /// Takes the points of hit tests in pixels, whatever units it reports places in.
    bool hitsInPixels = false;
    /// How it makes whole pixels of places that have fractions.
    Rounding rounding = Rounding::none;
    /// Its frames do not say where they are, but what fills them does.
    bool placelessFrames = false;
    /// What is below its menu bar counts from the top of the window.
    bool embeds = false;
    /// Which texts have no objects of their own.
    enum class TextLeaves : std::uint8_t {
        ofLeaves, ///< those of objects without children that are no texts themselves
        all,
    } textLeaves = TextLeaves::ofLeaves;
    /// All that a document holds can be typed over, and yet is no field.
    bool editsDocuments = false;
    /// The children of a table are its cells, and no object stands for a row.
    bool tablesHoldCells = true;
    /// What has no name of its own is named after its type.
    bool namedAfterTypes = false;
    /// Entries of a menu bar are menus even where nothing drops down from them.
    bool barEntriesAreMenus = false;
    /// Whether something can be typed in is told by states, not by what is implemented or inside.
    bool statesTellEditable = false;
    FontHabits fonts = {};
};

[[nodiscard]] const Habits& habitsOf(Toolkit toolkit);
/// The same on a desktop that tells no application where its windows are.
[[nodiscard]] const Habits& habitsInWindows(Toolkit toolkit);

/// What the applications on the bus are built with.
class Toolkits {
public:
    /// @param onlyInWindows nothing tells applications where their windows are, so that all of them
    /// are asked for places in these
    explicit Toolkits(bool onlyInWindows = false) : onlyInWindows_(onlyInWindows) {}

    void remember(const std::string& application, Toolkit toolkit) {
        toolkits_.insert_or_assign(application, toolkit);
    }
    void forgetAll() { toolkits_.clear(); }
    /// What the object's application is built with, once its root has been asked.
    [[nodiscard]] Toolkit of(const ObjectReference& object) const {
        const auto toolkit = toolkits_.find(object.name);
        return toolkit == toolkits_.end() ? Toolkit::other : toolkit->second;
    }
    [[nodiscard]] const Habits& habitsFor(const ObjectReference& object) const {
        return habits(of(object));
    }
    [[nodiscard]] const Habits& habits(Toolkit toolkit) const {
        return onlyInWindows_ ? habitsInWindows(toolkit) : habitsOf(toolkit);
    }

private:
    bool onlyInWindows_;
    std::map<std::string, Toolkit> toolkits_; ///< by the connection's name
};

} // namespace lumetry::atspi
