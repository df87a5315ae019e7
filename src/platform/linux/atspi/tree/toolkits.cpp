#include "platform/linux/atspi/tree/toolkits.h"

#include <array>
#include <map>
#include <utility>

namespace lumetry::atspi {

Toolkit toolkitNamed(std::string_view name, std::string_view application) {
    if (application == "soffice") {
        return Toolkit::libreOffice; // whichever toolkit draws its windows
    }
    constexpr std::array<std::pair<std::string_view, Toolkit>, 6> names = {
        {{"gtk", Toolkit::gtk}, // up to version 3
         {"GTK", Toolkit::gtk4},
         {"Chromium", Toolkit::chromium},
         {"Gecko", Toolkit::gecko},
         {"Qt", Toolkit::qt},
         {"J2SE-access-bridge", Toolkit::java}}};
    for (const auto& [known, toolkit] : names) {
        if (name == known) {
            return toolkit;
        }
    }
    return Toolkit::other;
}

const Habits& habitsOf(Toolkit toolkit) {
    using Unseen = Habits::Unseen;
    static constexpr Habits standard;
    static constexpr Habits gtk{.unseenChildren = Unseen::withoutPlace,
                                .clipsText = true,
                                .barEntriesAreMenus = true,
                                .fonts = {.scalesSize = true}};
    // Its widgets are never said to be showing, only to be visible.
    static constexpr Habits gtk4{.coordinates = ATSPI_COORD_TYPE_WINDOW,
                                 .shown = ATSPI_STATE_VISIBLE,
                                 .tablesHoldCells = false,
                                 .namedAfterTypes = true,
                                 .fonts = {.inOwnUnits = true}};
    static constexpr Habits libreOffice{.embeds = true,
                                        .editsDocuments = true,
                                        .fonts = {.weights = FontHabits::Weights::ofLibreOffice}};
    static constexpr Habits chromium{.unseenChildren = Unseen::none,
                                     .clipsText = true,
                                     .rounding = Rounding::outward,
                                     .tablesHoldCells = false,
                                     .statesTellEditable = true};
    static constexpr Habits gecko{.unseenChildren = Unseen::none,
                                  .hitsInPixels = true,
                                  .rounding = Rounding::nearest,
                                  .textLeaves = Habits::TextLeaves::all,
                                  .tablesHoldCells = false,
                                  .statesTellEditable = true};
    static constexpr Habits qt{.unseenChildren = Unseen::withoutPlace};
    static constexpr Habits java{.placelessFrames = true};
    switch (toolkit) {
    case Toolkit::gtk:
        return gtk;
    case Toolkit::gtk4:
        return gtk4;
    case Toolkit::libreOffice:
        return libreOffice;
    case Toolkit::chromium:
        return chromium;
    case Toolkit::gecko:
        return gecko;
    case Toolkit::java:
        return java;
    case Toolkit::qt:
        return qt;
    case Toolkit::other:
        break;
    }
    return standard;
}

const Habits& habitsInWindows(Toolkit toolkit) {
    static const auto all = [] {
        std::map<Toolkit, Habits> habits;
        for (const Toolkit one :
             {Toolkit::gtk, Toolkit::gtk4, Toolkit::libreOffice, Toolkit::chromium, Toolkit::gecko,
              Toolkit::qt, Toolkit::java, Toolkit::other}) {
            Habits own = habitsOf(one);
            own.coordinates = ATSPI_COORD_TYPE_WINDOW;
            own.hitsInPixels = false;
            own.rounding = Rounding::none;
            habits.emplace(one, own);
        }
        return habits;
    }();
    return all.at(toolkit);
}

} // namespace lumetry::atspi
