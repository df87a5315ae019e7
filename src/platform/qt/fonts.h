#pragma once

#include "platform/canvas.h"

#include <QFont>

namespace lumetry {

/// Chooses among the installed fonts once, and then answers for the two system fonts. Needs a
/// QGuiApplication.
class SystemFonts {
public:
    SystemFonts();

    /// Sized for a paint device of 72 dots per inch, where a point is a pixel.
    [[nodiscard]] QFont font(const Font& font) const;

private:
    QFont system_;
    QFont monospaced_;
};

} // namespace lumetry
