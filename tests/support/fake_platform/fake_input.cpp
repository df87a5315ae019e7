#include "support/fake_platform/fake_input.h"

#include <algorithm>
#include <utility>

namespace lumetry {

void FakeEventMonitors::fire(const Event& event) {
    const auto atStart = monitors_;
    for (const Monitor& monitor : atStart) {
        const bool installed =
            std::ranges::find(monitors_, monitor.number, &Monitor::number) != monitors_.end();
        if (installed && (monitor.mask & eventMask(event.type)) != 0) {
            monitor.handler(event);
        }
    }
}

std::vector<EventMask> FakeEventMonitors::masks() const {
    std::vector<EventMask> all;
    for (const Monitor& monitor : monitors_) {
        all.push_back(monitor.mask);
    }
    return all;
}

Token FakeEventMonitors::addGlobalMonitorForEvents(EventMask mask,
                                                   std::function<void(const Event&)> handler) {
    const int number = ++lastNumber_;
    monitors_.push_back({number, mask, std::move(handler)});
    return Token([this, number] {
        std::erase_if(monitors_,
                      [number](const Monitor& monitor) { return monitor.number == number; });
    });
}

} // namespace lumetry
