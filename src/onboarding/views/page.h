#pragma once

#include <QWidget>

#include <utility>
#include <vector>

class QAbstractButton;
class QVBoxLayout;

namespace lumetry::views {

/// A page: widgets one below the other, each centred, all of them in the middle.
class Page : public QWidget {
public:
    explicit Page(QWidget* parent);

    /// The widgets that enter one after another.
    [[nodiscard]] const std::vector<QWidget*>& staggerViews() const { return staggerViews_; }
    /// The buttons of the page, in the order of the keyboard.
    [[nodiscard]] virtual std::vector<QAbstractButton*> buttons() const { return {}; }

protected:
    /// @param spacing to the next one, in pixels
    /// @param overlap how far the widget reaches beyond what counts for the layout, on every side
    void add(QWidget* widget, int spacing, int overlap = 0);
    void setStaggerViews(std::vector<QWidget*> views) { staggerViews_ = std::move(views); }

private:
    QVBoxLayout* column_;
    std::vector<QWidget*> staggerViews_;
};

} // namespace lumetry::views
