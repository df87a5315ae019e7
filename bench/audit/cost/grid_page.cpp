#include "grid_page.h"

namespace lumetry::bench {
namespace {

constexpr int itemWidth = 96;
constexpr int columnWidth = 100;
constexpr int rowHeight = 26;

std::string itemHtml(std::size_t item) {
    const std::string number = std::to_string(item);
    switch (item % 3) {
    case 0:
        return "<p>Text " + number + "</p>";
    case 1:
        return "<button>Button " + number + "</button>";
    default:
        return "<input value=\"Input " + number + "\" aria-label=\"Input " + number + "\">";
    }
}

} // namespace

desktop::DesktopOptions GridPage::screen() const {
    desktop::DesktopOptions options;
    options.width = columns * columnWidth;
    options.height = rows * rowHeight;
    return options;
}

std::string GridPage::html() const {
    std::string page = R"(<!doctype html><meta charset="utf-8"><title>Audited grid</title>
<style>
  * { margin: 0; box-sizing: border-box; font: 12px 'DejaVu Sans'; }
  body { background: white; }
  div { display: flex; gap: )" +
                       std::to_string(columnWidth - itemWidth) +
                       "px; height: " + std::to_string(rowHeight) + R"(px; }
  p, button, input { flex: none; width: )" +
                       std::to_string(itemWidth) + R"(px; height: 24px; padding: 2px 4px;
                     border: 0; overflow: hidden; }
  p { background: #f3f4f6; color: #111827; } input { background: #fef3c7; color: #1f2937; }
  button { background: #1d4ed8; color: white; border-radius: 4px; }
</style>
)";
    for (std::size_t item = 0; item < items(); ++item) {
        const std::size_t column = item % static_cast<std::size_t>(columns);
        page += column == 0 ? "<div role=group aria-label=Row>" : "";
        page += itemHtml(item) + "\n";
        page += column + 1 == static_cast<std::size_t>(columns) ? "</div>" : "";
    }
    return page;
}

} // namespace lumetry::bench
