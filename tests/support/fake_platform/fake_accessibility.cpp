#include "support/fake_platform/fake_accessibility.h"

#include <algorithm>
#include <array>

namespace lumetry {

class FakeElementHandle final : public AXUIElementBackend {
public:
    explicit FakeElementHandle(FakeElement& element) : element_(element) {}

    [[nodiscard]] FakeElement& element() const { return element_; }

    [[nodiscard]] std::optional<AXValue>
    copyAttributeValue(std::string_view attribute) const override {
        return element_.owner_.answer(element_, attribute);
    }
    [[nodiscard]] std::optional<AXValue>
    copyParameterizedAttributeValue(std::string_view attribute,
                                    const AXValue& parameter) const override {
        element_.parameters.insert_or_assign(std::string(attribute), parameter);
        const auto found = element_.parameterizedAttributes.find(attribute);
        return found != element_.parameterizedAttributes.end() ? std::optional(found->second)
                                                               : std::nullopt;
    }
    void setAttributeValue(std::string_view attribute, const AXValue& value) const override {
        element_.owner_.writes.push_back({&element_, std::string(attribute), value});
    }
    [[nodiscard]] std::optional<AXUIElement> copyElementAtPosition(float x,
                                                                   float y) const override {
        element_.hitTests.push_back({x, y});
        FakeElement* found = element_.hitTest ? element_.hitTest({x, y}) : nullptr;
        return found ? std::optional(found->handle()) : std::nullopt;
    }
    void setMessagingTimeout(float seconds) const override {
        element_.messagingTimeoutSeconds = seconds;
    }
    [[nodiscard]] std::optional<pid_t> getPid() const override { return element_.pid; }
    [[nodiscard]] bool isSameElement(const AXUIElementBackend& other) const override {
        const auto* handle = dynamic_cast<const FakeElementHandle*>(&other);
        return handle != nullptr && &handle->element_ == &element_;
    }
    [[nodiscard]] std::size_t hash() const override {
        return std::hash<const FakeElement*>()(&element_);
    }

private:
    FakeElement& element_;
};

AXUIElement FakeElement::handle() {
    return AXUIElement(std::make_shared<FakeElementHandle>(*this));
}

FakeElement& FakeElement::set(const std::string& attribute, AXValue value) {
    attributes.insert_or_assign(attribute, std::move(value));
    return *this;
}

FakeElement& FakeElement::setFrame(const Rect& frame) {
    return set("AXPosition", frame.origin()).set("AXSize", frame.size());
}

FakeElement& FakeElement::setChildren(const std::vector<FakeElement*>& children) {
    std::vector<AXUIElement> handles;
    for (FakeElement* child : children) {
        child->set("AXParent", handle());
        handles.push_back(child->handle());
    }
    return set("AXChildren", handles);
}

void FakeElement::answerWith(std::vector<FakeElement*> elements) {
    hitTest = [elements = std::move(elements)](Point point) -> FakeElement* {
        const auto found = std::ranges::find_if(elements, [point](const FakeElement* element) {
            const Point origin = *element->attributes.at("AXPosition").as<Point>();
            const Size size = *element->attributes.at("AXSize").as<Size>();
            return Rect{origin.x, origin.y, size.width, size.height}.contains(point);
        });
        return found == elements.end() ? nullptr : *found;
    };
}

FakeElement& FakeAccessibility::makeElement(pid_t pid, const char* role) {
    elements_.push_back(std::make_unique<FakeElement>(*this));
    elements_.back()->pid = pid;
    return elements_.back()->set("AXRole", role);
}

FakeElement& FakeAccessibility::systemWide() {
    if (!systemWide_) {
        systemWide_ = &makeElement(0, "AXSystemWide");
    }
    return *systemWide_;
}

FakeElement& FakeAccessibility::application(pid_t pid) {
    FakeElement*& application = applications_[pid];
    if (!application) {
        application = &makeElement(pid, "AXApplication");
    }
    return *application;
}

int FakeAccessibility::totalReads() const {
    int total = 0;
    for (const auto& element : elements_) {
        for (const auto& [attribute, count] : element->reads) {
            total += count;
        }
    }
    return total;
}

AXUIElement FakeAccessibility::createApplication(pid_t pid) {
    return application(pid).handle();
}

Token FakeAccessibility::keepReplies() {
    if (kept_) {
        return {};
    }
    kept_.emplace();
    return Token([this] { kept_.reset(); });
}

void FakeAccessibility::prefetch(std::span<const AXUIElement> elements,
                                 std::span<const std::string_view> attributes) {
    prefetches += elements.empty() || attributes.empty() ? 0 : 1;
    for (const AXUIElement& element : elements) {
        const auto* handle = dynamic_cast<const FakeElementHandle*>(&element.backend());
        for (const std::string_view attribute : attributes) {
            if (handle && kept_) {
                answer(handle->element(), attribute);
            }
        }
    }
}

void FakeAccessibility::prefetchChildren(std::span<const AXUIElement> elements) {
    constexpr std::array<std::string_view, 1> children = {"AXChildren"};
    prefetch(elements, children);
}

std::optional<AXValue> FakeAccessibility::answer(FakeElement& element, std::string_view attribute) {
    const std::pair key(static_cast<const FakeElement*>(&element), std::string(attribute));
    if (kept_ && kept_->contains(key)) {
        return kept_->at(key);
    }
    ++element.reads[key.second];
    std::optional<AXValue> value;
    const auto found = element.attributes.find(attribute);
    if (found != element.attributes.end()) {
        value = found->second;
    }
    if (kept_) {
        kept_->emplace(key, value);
    }
    return value;
}

} // namespace lumetry
