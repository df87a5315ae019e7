#include "timed_accessibility.h"

#include "platform/ax_value.h"

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace lumetry {
namespace {

AXUIElement timed(AXUIElement element, Stopwatch& watch);
std::optional<AXValue> timed(std::optional<AXValue> value, Stopwatch& watch);
AXUIElement untimed(const AXUIElement& element);

class TimedElement final : public AXUIElementBackend {
public:
    TimedElement(AXUIElement inner, Stopwatch& watch) : inner_(std::move(inner)), watch_(watch) {}

    [[nodiscard]] const AXUIElement& inner() const { return inner_; }

    [[nodiscard]] std::optional<AXValue>
    copyAttributeValue(std::string_view attribute) const override {
        const Stopwatch::Lap lap(watch_);
        return timed(inner_.copyAttributeValue(attribute), watch_);
    }
    [[nodiscard]] std::optional<AXValue>
    copyParameterizedAttributeValue(std::string_view attribute,
                                    const AXValue& parameter) const override {
        const Stopwatch::Lap lap(watch_);
        const auto element = parameter.as<AXUIElement>();
        return timed(inner_.copyParameterizedAttributeValue(
                         attribute, element ? AXValue(untimed(*element)) : parameter),
                     watch_);
    }
    void setAttributeValue(std::string_view attribute, const AXValue& value) const override {
        const Stopwatch::Lap lap(watch_);
        inner_.setAttributeValue(attribute, value);
    }
    [[nodiscard]] std::optional<AXUIElement> copyElementAtPosition(float x,
                                                                   float y) const override {
        const Stopwatch::Lap lap(watch_);
        auto found = inner_.copyElementAtPosition(x, y);
        return found ? std::optional(timed(std::move(*found), watch_)) : std::nullopt;
    }
    void setMessagingTimeout(float seconds) const override { inner_.setMessagingTimeout(seconds); }
    [[nodiscard]] std::optional<pid_t> getPid() const override {
        const Stopwatch::Lap lap(watch_);
        return inner_.getPid();
    }
    [[nodiscard]] bool isSameElement(const AXUIElementBackend& other) const override {
        const auto* element = dynamic_cast<const TimedElement*>(&other);
        return element != nullptr && element->inner_ == inner_;
    }
    [[nodiscard]] std::size_t hash() const override { return std::hash<AXUIElement>()(inner_); }

private:
    AXUIElement inner_;
    Stopwatch& watch_;
};

AXUIElement timed(AXUIElement element, Stopwatch& watch) {
    return AXUIElement(std::make_shared<TimedElement>(std::move(element), watch));
}

std::optional<AXValue> timed(std::optional<AXValue> value, Stopwatch& watch) {
    if (auto element = value ? value->as<AXUIElement>() : std::nullopt) {
        return timed(std::move(*element), watch);
    }
    if (auto elements = value ? value->as<std::vector<AXUIElement>>() : std::nullopt) {
        for (AXUIElement& element : *elements) {
            element = timed(std::move(element), watch);
        }
        return std::move(*elements);
    }
    return value;
}

AXUIElement untimed(const AXUIElement& element) {
    const auto* backend = dynamic_cast<const TimedElement*>(&element.backend());
    return backend ? backend->inner() : element;
}

std::vector<AXUIElement> untimed(std::span<const AXUIElement> elements) {
    std::vector<AXUIElement> inner;
    inner.reserve(elements.size());
    for (const AXUIElement& element : elements) {
        inner.push_back(untimed(element));
    }
    return inner;
}

} // namespace

AXUIElement TimedAccessibility::createSystemWide() {
    return timed(inner_.createSystemWide(), watch_);
}

AXUIElement TimedAccessibility::createApplication(pid_t pid) {
    return timed(inner_.createApplication(pid), watch_);
}

void TimedAccessibility::prefetch(std::span<const AXUIElement> elements,
                                  std::span<const std::string_view> attributes) {
    const Stopwatch::Lap lap(watch_);
    inner_.prefetch(untimed(elements), attributes);
}

void TimedAccessibility::prefetchChildren(std::span<const AXUIElement> elements) {
    const Stopwatch::Lap lap(watch_);
    inner_.prefetchChildren(untimed(elements));
}

} // namespace lumetry
