#pragma once

#include <QObject>

#include <functional>
#include <utility>

class QWindow;

namespace lumetry {

/// Whether a window of this program is open: menus and what belongs to another window do not count.
[[nodiscard]] bool hasVisibleWindows();

/// The window that stands for the program: the one with the keyboard, else the latest that is open.
/// Null where none is.
[[nodiscard]] QWindow* frontWindow();

/// Tells when the last open window of this program has been closed.
class LastWindowWatch final : public QObject {
public:
    /// @param handler called from the main loop, once what else the closing has led to is done
    explicit LastWindowWatch(std::function<void()> handler);

private:
    bool eventFilter(QObject* watched, QEvent* event) override;

    std::function<void()> handler_;
};

} // namespace lumetry
