#include "support/fake_platform/fake_shell.h"

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

std::vector<EventStatus> FakeHotKeys::press(HotKeyID id) {
    std::vector<EventStatus> answers;
    const HotKeyEvent event{id};
    const auto all = handlers.all();
    for (auto handler = all.rbegin(); handler != all.rend(); ++handler) {
        answers.push_back((*handler)(&event));
        if (answers.back() == noErr) {
            break;
        }
    }
    return answers;
}

Token FakeHotKeys::registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                       HotKeyID id) {
    return registrations.add({keyCode, modifiers, id});
}

EventFate FakeLocalEventMonitors::fire(const Event& event) {
    const auto all = monitors.all();
    for (auto monitor = all.rbegin(); monitor != all.rend(); ++monitor) {
        if ((monitor->first & eventMask(event.type)) != 0 &&
            monitor->second(event) == EventFate::swallow) {
            return EventFate::swallow;
        }
    }
    return EventFate::passOn;
}

void FakeOwnApplication::becomeActive() {
    for (const auto& handler : observers.all()) {
        handler();
    }
}

std::unique_ptr<StatusItem> FakeStatusBar::makeStatusItem() {
    made.push_back(std::make_shared<Record>());
    return std::make_unique<FakeStatusItem>(made.back());
}

} // namespace lumetry
