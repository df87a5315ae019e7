#include "support/fake_platform/fake_shell.h"

#include <algorithm>

namespace lumetry {
namespace {

class FakeStatusItem final : public StatusItem {
public:
    explicit FakeStatusItem(std::shared_ptr<FakeStatusBar::Record> record)
        : record_(std::move(record)) {}
    ~FakeStatusItem() override { record_->alive = false; }
    FakeStatusItem(const FakeStatusItem&) = delete;
    FakeStatusItem& operator=(const FakeStatusItem&) = delete;

    void setImage(const TemplateImage& image) override { record_->image = image; }
    void setToolTip(const std::string& text) override { record_->toolTip = text; }
    void setMenu(std::vector<MenuItem> menu) override { record_->menu = std::move(menu); }

private:
    std::shared_ptr<FakeStatusBar::Record> record_;
};

} // namespace

// NOLINTNEXTLINE(readability-make-member-function-const): what is pressed changes a lot
std::vector<EventStatus> FakeHotKeys::press(HotKeyID id) {
    std::vector<EventStatus> answers;
    const HotKeyEvent event{id};
    const auto all = handlers.all();
    (void)std::any_of(all.rbegin(), all.rend(), [&](const auto& handler) {
        answers.push_back(handler(&event));
        return answers.back() == noErr;
    });
    return answers;
}

// NOLINTNEXTLINE(readability-make-member-function-const): what is fired changes a lot
EventFate FakeLocalEventMonitors::fire(const Event& event) {
    const auto all = monitors.all();
    const bool isSwallowed = std::any_of(all.rbegin(), all.rend(), [&event](const auto& monitor) {
        return (monitor.first & eventMask(event.type)) != 0 &&
               monitor.second(event) == EventFate::swallow;
    });
    return isSwallowed ? EventFate::swallow : EventFate::passOn;
}

std::unique_ptr<StatusItem> FakeStatusBar::makeStatusItem() {
    made.push_back(std::make_shared<Record>());
    return std::make_unique<FakeStatusItem>(made.back());
}

} // namespace lumetry
