#pragma once

#include "onboarding/onboarding_window.h"
#include "onboarding/views/symbols.h"

#include <QWidget>

class QLabel;

namespace lumetry::views {

class FlatButton;

/// One permission: what it is for, and whether it is granted.
class PermissionCard final : public QWidget {
public:
    struct Texts {
        QString title;
        QString description;
    };

    PermissionCard(Symbol symbol, const Texts& texts, QWidget* parent);

    void setState(const CardState& state);
    void pop() { icon_->pop(); }
    [[nodiscard]] FlatButton& button() { return *button_; }

private:
    void paintEvent(QPaintEvent* event) override;

    SymbolView* icon_;
    FlatButton* button_;
    QLabel* done_;
};

} // namespace lumetry::views
