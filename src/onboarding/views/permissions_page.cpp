#include "onboarding/views/permissions_page.h"

#include "onboarding/views/buttons.h"
#include "onboarding/views/entrance.h"
#include "onboarding/views/permission_card.h"
#include "onboarding/views/pill.h"
#include "onboarding/views/style.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace lumetry::views {

PermissionsPage::PermissionsPage(OnboardingActions& actions, QWidget* parent) : Page(parent) {
    const QString sizes = QStringLiteral("Reads sizes, spacing, and labels from any app.");
    const QString colors = QStringLiteral("Reads colors, fills & corner radii from any app.");
    const QFont font = PermissionCard::fontOf({sizes, colors});
    accessibility_ = new PermissionCard(Symbol::accessibility,
                                        {QStringLiteral("Accessibility"), sizes}, font, this);
    screenRecording_ = new PermissionCard(Symbol::rectangleDashedBadgeRecord,
                                          {QStringLiteral("Screen Recording"), colors}, font, this);
    QObject::connect(&accessibility_->button(), &QPushButton::clicked, this,
                     [&actions] { actions.grantAX(); });
    QObject::connect(&screenRecording_->button(), &QPushButton::clicked, this,
                     [&actions] { actions.grantSR(); });
    QWidget* const left = makeLeftColumn();
    QWidget* const footer = makeFooter();

    auto* const right = new QVBoxLayout;
    right->setSpacing(0);
    right->addWidget(accessibility_);
    right->addSpacing(13);
    right->addWidget(screenRecording_);
    right->addSpacing(16);
    right->addWidget(footer, 0, Qt::AlignLeft);

    auto* const columns = new QWidget(this);
    auto* const row = new QHBoxLayout(columns);
    row->setContentsMargins(entranceDrop, entranceDrop, entranceDrop, entranceDrop);
    row->setSpacing(40);
    row->addWidget(left, 0, Qt::AlignVCenter);
    row->addLayout(right);
    row->setAlignment(right, Qt::AlignVCenter);
    add(columns, 0, entranceDrop);
    setStaggerViews({left, accessibility_, screenRecording_, footer});
}

QWidget* PermissionsPage::makeLeftColumn() {
    auto* const left = new QWidget(this);
    left->setFixedWidth(264);
    auto* const column = new QVBoxLayout(left);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(14);
    column->addWidget(
        new Pill(makeLabel(QStringLiteral("SETUP"), systemFont(11, FontWeight::bold), pink(), left),
                 {9, 4, 9, 4}, {pink(0.14), {}, 9}, left),
        0, Qt::AlignLeft);
    column->addWidget(makeLabel(QStringLiteral("Two quick\npermissions"),
                                systemFont(29, FontWeight::bold), whiteAt(1), left));
    auto* const text = makeLabel(
        QStringLiteral("Click Grant and macOS opens the right settings pane. Flip the switch, "
                       "then come back here."),
        systemFont(14), whiteAt(0.6), left);
    text->setWordWrap(true);
    constexpr int textWidth = 254;
    text->setFixedWidth(textWidth);
    text->setFixedHeight(text->heightForWidth(textWidth));
    column->addWidget(text);
    return left;
}

QWidget* PermissionsPage::makeFooter() {
    auto* const footer = new QWidget(this);
    auto* const row = new QHBoxLayout(footer);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    row->addWidget(new SymbolView(Symbol::lockFill, 11, SymbolWeight::semibold, whiteAt(0.5),
                                  QStringLiteral("private"), footer),
                   0, Qt::AlignVCenter);
    row->addWidget(makeLabel(QStringLiteral("Runs 100% locally — nothing ever leaves your Mac."),
                             systemFont(12.5), whiteAt(0.55), footer),
                   0, Qt::AlignVCenter);
    return footer;
}

PermissionCard& PermissionsPage::card(Permission permission) {
    return permission == Permission::accessibility ? *accessibility_ : *screenRecording_;
}

std::vector<QAbstractButton*> PermissionsPage::buttons() const {
    return {&accessibility_->button(), &screenRecording_->button()};
}

} // namespace lumetry::views
