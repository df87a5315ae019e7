#include "onboarding/views/welcome_page.h"

#include "onboarding/views/brand_mark_view.h"
#include "onboarding/views/dimension_line_view.h"
#include "onboarding/views/style.h"

#include <QLabel>

namespace lumetry::views {

WelcomePage::WelcomePage(QWidget* parent) : Page(parent) {
    constexpr double markSize = 96;
    constexpr double lineDelaySeconds = 1.5;
    auto* const mark = new BrandMarkView(markSize, this);
    mark->playEntrance();
    auto* const title = makeLabel(QStringLiteral("Measure anything on your Mac."),
                                  systemFont(30, FontWeight::bold), whiteAt(1), this);
    auto* const line = new DimensionLineView(this);
    line->setFixedWidth(title->sizeHint().width());
    line->animateIn(lineDelaySeconds);
    auto* const subtitle =
        makeLabel(QStringLiteral(
                      "Lumetry reads real sizes, spacing, and colors from any app on your screen.\n"
                      "Setup takes about 30 seconds."),
                  systemFont(15), whiteAt(0.6), this);
    subtitle->setAlignment(Qt::AlignCenter);
    add(mark, 30, BrandMarkView::margin());
    add(title, 10);
    add(line, 22);
    add(subtitle, 0);
    setStaggerViews({title, subtitle});
}

} // namespace lumetry::views
