#pragma once

#include <QColor>
#include <QFileSystemWatcher>

#include <functional>

namespace lumetry {

/// The colour in which Plasma's panels write: that of the desktop theme, or where it has none, that
/// of the windows.
class PanelColor {
public:
    /// @param changed is called whenever it is another one
    explicit PanelColor(std::function<void()> changed);

    [[nodiscard]] const QColor& get() const { return color_; }

private:
    QColor color_;
    QFileSystemWatcher watcher_;
};

} // namespace lumetry
