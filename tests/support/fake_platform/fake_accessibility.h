#pragma once

#include "platform/accessibility.h"
#include "platform/ax_value.h"
#include "support/printing/printing.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace lumetry {

class FakeAccessibility;

/// One element of a fake application. The desktop owns it; handles only point to it.
class FakeElement {
public:
    explicit FakeElement(FakeAccessibility& owner) : owner_(owner) {}

    /// A new handle. Handles of one element are equal, though nothing but the element is shared.
    [[nodiscard]] AXUIElement handle();
    FakeElement& set(const std::string& attribute, AXValue value);
    FakeElement& setFrame(const Rect& frame);
    /// Makes the elements its children, and itself their parent.
    FakeElement& setChildren(const std::vector<FakeElement*>& children);
    /// Hit tests find the first of the elements whose frame contains the point.
    void answerWith(std::vector<FakeElement*> elements);

    std::map<std::string, AXValue, std::less<>> attributes;
    std::map<std::string, AXValue, std::less<>> parameterizedAttributes;
    /// For roots: the element at a point of accessibility space, null for none.
    std::function<FakeElement*(Point)> hitTest;
    std::optional<pid_t> pid;

    std::map<std::string, int, std::less<>> reads; ///< how often the application was asked for what
    /// What the parameterised attributes were last asked about.
    std::map<std::string, AXValue, std::less<>> parameters;
    std::vector<Point> hitTests;
    std::optional<float> messagingTimeoutSeconds;

private:
    friend class FakeElementHandle;

    FakeAccessibility& owner_;
};

/// The elements of all applications, and what was asked of them.
class FakeAccessibility final : public Accessibility {
public:
    struct Write {
        const FakeElement* element;
        std::string attribute;
        AXValue value;
    };

    FakeElement& makeElement(pid_t pid, const char* role);
    FakeElement& systemWide();
    FakeElement& application(pid_t pid);
    /// Reads of all elements together, those for a prefetch included.
    [[nodiscard]] int totalReads() const;

    [[nodiscard]] AXUIElement createSystemWide() override { return systemWide().handle(); }
    [[nodiscard]] AXUIElement createApplication(pid_t pid) override;
    [[nodiscard]] bool isProcessTrusted() override { return trusted; }
    bool isProcessTrustedWithOptions(bool prompt) override {
        prompts += prompt ? 1 : 0;
        return trusted;
    }
    [[nodiscard]] Token keepReplies() override;
    void prefetch(std::span<const AXUIElement> elements,
                  std::span<const std::string_view> attributes) override;
    void prefetchChildren(std::span<const AXUIElement> elements) override;
    [[nodiscard]] std::size_t unanswered() const override { return silences; }

    bool trusted = true;
    std::size_t silences = 0;  ///< questions that went without an answer
    int prompts = 0;           ///< how often the user was asked
    std::vector<Write> writes; ///< to any element, in order
    int prefetches = 0;        ///< how often elements were asked together

private:
    friend class FakeElementHandle;

    using Answers =
        std::map<std::pair<const FakeElement*, std::string>, std::optional<AXValue>, std::less<>>;

    std::optional<AXValue> answer(FakeElement& element, std::string_view attribute);

    std::vector<std::unique_ptr<FakeElement>> elements_;
    FakeElement* systemWide_ = nullptr;
    std::map<pid_t, FakeElement*> applications_;
    std::optional<Answers> kept_; ///< while a scope is open
};

} // namespace lumetry
