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

    /// @param font of the description
    PermissionCard(Symbol symbol, const Texts& texts, const QFont& font, QWidget* parent);

    /// One in which each of the descriptions has room on one line.
    [[nodiscard]] static QFont fontOf(const QStringList& descriptions);

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
