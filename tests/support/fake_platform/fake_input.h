#pragma once

#include "platform/input.h"

#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace lumetry {

/// Things that are installed and removed, newest last.
template<class T>
class FakeInstallations {
public:
    [[nodiscard]] Token add(T thing) {
        const int number = ++lastNumber_;
        installed_.emplace(number, std::move(thing));
        return Token([this, number] { installed_.erase(number); });
    }
    [[nodiscard]] std::vector<T> all() const {
        std::vector<T> things;
        forEach([&](const T& thing) { things.push_back(thing); });
        return things;
    }
    /// Calls it with each; leaves out what is removed meanwhile.
    template<class Function>
    void forEach(Function function) const {
        for (const auto& [number, thing] : std::map(installed_)) {
            if (installed_.contains(number)) {
                function(thing);
            }
        }
    }

private:
    int lastNumber_ = 0;
    std::map<int, T> installed_;
};

class FakePointer final : public Pointer {
public:
    [[nodiscard]] Point location() override { return at; }
    [[nodiscard]] ModifierFlags modifierFlags() override { return modifiers; }

    Point at; ///< screen space
    ModifierFlags modifiers = 0;
};

/// Monitors that a test fires.
class FakeEventMonitors final : public EventMonitors {
public:
    /// Calls the handlers of the monitors that want the event. A handler may remove any monitor.
    void fire(const Event& event) const {
        monitors_.forEach([&](const auto& monitor) {
            if ((monitor.first & eventMask(event.type)) != 0) {
                monitor.second(event);
            }
        });
    }
    /// The masks of the monitors that are installed, oldest first.
    [[nodiscard]] std::vector<EventMask> masks() const {
        std::vector<EventMask> all;
        monitors_.forEach([&](const auto& monitor) { all.push_back(monitor.first); });
        return all;
    }

    [[nodiscard]] Token
    addGlobalMonitorForEvents(EventMask mask, std::function<void(const Event&)> handler) override {
        return monitors_.add({mask, std::move(handler)});
    }

private:
    FakeInstallations<std::pair<EventMask, std::function<void(const Event&)>>> monitors_;
};

} // namespace lumetry
