#pragma once

#include "platform/ax_ui_element.h"

#include <cstdint>
#include <string_view>

namespace lumetry {

/// The class of a measured component; it decides which measurements are shown.
enum class Bucket : std::uint8_t {
    text,       ///< static text, headings, links
    control,    ///< push buttons and the other clickable controls
    input,      ///< editable text: fields, areas, combo boxes, search fields
    generic,    ///< everything without a class of its own: groups, cells, rows, unknown roles
    collection, ///< lists, outlines, tables, grids, browsers
    container,  ///< windows and large structural areas
    graphic,    ///< images, media, indicators, menus and other visuals without text
};

/// The class of an accessibility role, compared exactly; `generic` for a role that is not known.
[[nodiscard]] Bucket bucketFor(std::string_view role);

/// What is measured for an element under the pointer.
struct ResolvedComponent {
    AXUIElement component;  ///< the element to measure
    Bucket bucket;          ///< the component's class
    AXUIElement textSource; ///< the element whose text and typography describe the component
};

/// The component that an element belongs to: the control or input field of which it is the label or
/// the icon, else the element itself. Takes at most three reads: role, parent, parent's role.
[[nodiscard]] ResolvedComponent resolveComponent(const AXUIElement& element);

} // namespace lumetry
