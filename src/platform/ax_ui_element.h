#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace lumetry {

struct AXValue;
class AXUIElement;

/// What a desktop implements for one accessibility element. Named after the operations of the
/// AXUIElement family; "no value" stands for every failure: an attribute that the element does not
/// have, a process that is gone, an answer that did not come within the messaging time-out.
class AXUIElementBackend {
public:
    AXUIElementBackend() = default;
    AXUIElementBackend(const AXUIElementBackend&) = delete;
    AXUIElementBackend& operator=(const AXUIElementBackend&) = delete;
    virtual ~AXUIElementBackend() = default;

    [[nodiscard]] virtual std::optional<AXValue>
    copyAttributeValue(std::string_view attribute) const = 0;
    [[nodiscard]] virtual std::optional<AXValue>
    copyParameterizedAttributeValue(std::string_view attribute, const AXValue& parameter) const = 0;
    virtual void setAttributeValue(std::string_view attribute, const AXValue& value) const = 0;
    [[nodiscard]] virtual std::optional<AXUIElement> copyElementAtPosition(float x,
                                                                           float y) const = 0;
    virtual void setMessagingTimeout(float seconds) const = 0;
    [[nodiscard]] virtual std::optional<pid_t> getPid() const = 0;
    /// Whether the other backend, of any desktop, stands for the same element.
    [[nodiscard]] virtual bool isSameElement(const AXUIElementBackend& other) const = 0;
    /// The same number for the same element (CFHash).
    [[nodiscard]] virtual std::size_t hash() const = 0;
};

/// A reference-counted handle of one accessibility element of some process (AXUIElementRef). Two
/// handles of the same element are equal.
class AXUIElement {
public:
    explicit AXUIElement(std::shared_ptr<const AXUIElementBackend> backend);

    /// Reads one attribute (AXUIElementCopyAttributeValue). Absent when it cannot be read.
    [[nodiscard]] std::optional<AXValue> copyAttributeValue(std::string_view attribute) const;
    /// Reads one parameterised attribute (AXUIElementCopyParameterizedAttributeValue).
    [[nodiscard]] std::optional<AXValue>
    copyParameterizedAttributeValue(std::string_view attribute, const AXValue& parameter) const;
    /// Writes one attribute (AXUIElementSetAttributeValue); a refusal goes unnoticed.
    void setAttributeValue(std::string_view attribute, const AXValue& value) const;
    /// Hit test (AXUIElementCopyElementAtPosition), for the system-wide element and application
    /// elements. The point is in accessibility space. Absent when nothing answers there.
    [[nodiscard]] std::optional<AXUIElement> copyElementAtPosition(float x, float y) const;
    /// Bounds how long calls through this element may block (AXUIElementSetMessagingTimeout). On
    /// the system-wide element it sets the default of the whole program.
    void setMessagingTimeout(float seconds) const;
    /// The owning process (AXUIElementGetPid).
    [[nodiscard]] std::optional<pid_t> getPid() const;

    [[nodiscard]] const AXUIElementBackend& backend() const { return *backend_; }

    friend bool operator==(const AXUIElement& a, const AXUIElement& b);

private:
    std::shared_ptr<const AXUIElementBackend> backend_;
};

} // namespace lumetry

template<>
struct std::hash<lumetry::AXUIElement> {
    std::size_t operator()(const lumetry::AXUIElement& element) const {
        return element.backend().hash();
    }
};
