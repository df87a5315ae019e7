#pragma once

#include "onboarding/views/style.h"

#include <QPushButton>

namespace lumetry::views {

/// How a button looks that paints itself.
struct ButtonLook {
    Box box;
    QColor text;
};

/// A flat button of its own colours, with a ring around it while it has the keyboard
/// and was reached by it.
class FlatButton : public QPushButton {
public:
    explicit FlatButton(QWidget* parent);

    void setLook(const ButtonLook& look);
    [[nodiscard]] const ButtonLook& look() const { return look_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    /// What stands on the button.
    virtual void paintContents(QPainter& painter);

private:
    ButtonLook look_;
    bool reachedByKey_ = false;
};

/// The chevron that leads a step back.
class BackButton final : public FlatButton {
public:
    explicit BackButton(QWidget* parent);

private:
    void paintContents(QPainter& painter) override;
};

} // namespace lumetry::views
