#include "app/views/control_panel.h"
#include "views_test.h"

#include <QTest>

namespace lumetry {
namespace {

TEST(ControlPanel, StartsForReturnAndHidesWhenClosed) {
    std::vector<std::string> calls;
    const TemplateImage icon = {
        {18, 18}, [](const Rect& area) {
            return StrokedPath{{{{area.x, area.y}, {area.x + area.width, area.y}}}};
        }};
    const auto panel = makeControlPanel(
        {[&] { calls.emplace_back("start"); }, [&] { calls.emplace_back("quit"); }}, icon);
    QWidget* const widget = windowTitled(QStringLiteral("Lumetry"));
    ASSERT_NE(widget, nullptr);
    EXPECT_FALSE(widget->isVisible());
    panel->center();
    panel->makeKeyAndOrderFront();
    ASSERT_TRUE(QTest::qWaitForWindowActive(widget));
    typeKey(*widget, Qt::Key_Tab);
    typeKey(*widget, Qt::Key_Tab);
    EXPECT_TRUE(widget->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    typeKey(*widget, Qt::Key_Escape); // which ends inspect mode, not the panel
    EXPECT_TRUE(widget->isVisible());
    typeKey(*widget, Qt::Key_Return);
    EXPECT_EQ(calls, std::vector<std::string>{"start"});
    widget->close();
    panel->makeKeyAndOrderFront();
    EXPECT_TRUE(widget->isVisible());
    panel->orderOut();
    EXPECT_FALSE(widget->isVisible());
    for (QAbstractButton* const button : widget->findChildren<QAbstractButton*>()) {
        button->click();
    }
    EXPECT_EQ(calls, (std::vector<std::string>{"start", "quit", "start"}));
}

} // namespace
} // namespace lumetry
