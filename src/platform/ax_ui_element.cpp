#include "platform/ax_ui_element.h"

#include "platform/ax_value.h"

#include <utility>

namespace lumetry {

AXUIElement::AXUIElement(std::shared_ptr<const AXUIElementBackend> backend)
    : backend_(std::move(backend)) {}

std::optional<AXValue> AXUIElement::copyAttributeValue(std::string_view attribute) const {
    return backend_->copyAttributeValue(attribute);
}

std::optional<AXValue>
AXUIElement::copyParameterizedAttributeValue(std::string_view attribute,
                                             const AXValue& parameter) const {
    return backend_->copyParameterizedAttributeValue(attribute, parameter);
}

void AXUIElement::setAttributeValue(std::string_view attribute, const AXValue& value) const {
    backend_->setAttributeValue(attribute, value);
}

std::optional<AXUIElement> AXUIElement::copyElementAtPosition(float x, float y) const {
    return backend_->copyElementAtPosition(x, y);
}

void AXUIElement::setMessagingTimeout(float seconds) const {
    backend_->setMessagingTimeout(seconds);
}

std::optional<pid_t> AXUIElement::getPid() const {
    return backend_->getPid();
}

bool operator==(const AXUIElement& a, const AXUIElement& b) {
    return a.backend_ == b.backend_ || a.backend_->isSameElement(*b.backend_);
}

} // namespace lumetry
