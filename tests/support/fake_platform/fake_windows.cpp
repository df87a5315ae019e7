#include "support/fake_platform/fake_windows.h"

#include <algorithm>
#include <utility>

namespace lumetry {
namespace {

class FakeOverlayWindow final : public OverlayWindow {
public:
    explicit FakeOverlayWindow(std::shared_ptr<OverlayWindowRecord> record)
        : record_(std::move(record)) {}
    FakeOverlayWindow(const FakeOverlayWindow&) = delete;
    FakeOverlayWindow& operator=(const FakeOverlayWindow&) = delete;
    ~FakeOverlayWindow() override {
        record_->alive = false;
        record_->shown = false;
        record_->view = nullptr;
    }

    void setContentView(ContentView& view) override { record_->view = &view; }
    [[nodiscard]] Rect frame() const override { return record_->frame; }
    void setFrame(const Rect& frame) override { record_->frame = frame; }
    [[nodiscard]] std::uint32_t windowNumber() const override { return record_->number; }
    void orderFrontRegardless() override { record_->shown = true; }
    void orderOut() override { record_->shown = false; }
    void setNeedsDisplay() override { ++record_->needsDisplay; }

private:
    std::shared_ptr<OverlayWindowRecord> record_;
};

} // namespace

Size FixedTextMetrics::measure(std::string_view text, const Font& font) const {
    const auto codePoints = std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; });
    return {7.0 * static_cast<double>(codePoints), font.size + 3};
}

std::unique_ptr<OverlayWindow> FakeOverlayWindows::makeWindow(const Rect& contentRect,
                                                              const OverlayWindowStyle& style) {
    made.push_back(std::make_shared<OverlayWindowRecord>());
    made.back()->number = static_cast<std::uint32_t>(100 + made.size());
    made.back()->frame = contentRect;
    made.back()->style = style;
    return std::make_unique<FakeOverlayWindow>(made.back());
}

} // namespace lumetry
