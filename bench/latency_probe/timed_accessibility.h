#pragma once

#include "platform/accessibility.h"
#include "platform/ax_ui_element.h"
#include "stopwatch.h"

namespace lumetry {

/// Another way into element trees, with a watch on all that is asked there.
class TimedAccessibility final : public Accessibility {
public:
    explicit TimedAccessibility(Accessibility& inner) : inner_(inner) {}

    [[nodiscard]] const Stopwatch& watch() const { return watch_; }

    [[nodiscard]] AXUIElement createSystemWide() override;
    [[nodiscard]] AXUIElement createApplication(pid_t pid) override;
    [[nodiscard]] bool isProcessTrusted() override { return inner_.isProcessTrusted(); }
    bool isProcessTrustedWithOptions(bool prompt) override {
        return inner_.isProcessTrustedWithOptions(prompt);
    }
    [[nodiscard]] Token keepReplies() override { return inner_.keepReplies(); }
    void prefetch(std::span<const AXUIElement> elements,
                  std::span<const std::string_view> attributes) override;
    void prefetchChildren(std::span<const AXUIElement> elements) override;
    [[nodiscard]] std::size_t unanswered() const override { return inner_.unanswered(); }

private:
    Accessibility& inner_;
    Stopwatch watch_;
};

} // namespace lumetry
