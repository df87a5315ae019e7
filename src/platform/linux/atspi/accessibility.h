#pragma once

#include "base/lifetime.h"
#include "platform/accessibility.h"
#include "platform/linux/atspi/elements/context.h"

#include <cstdint>
#include <memory>
#include <string>

namespace lumetry {

/// Other applications' element trees over AT-SPI.
class AtspiAccessibility final : public Accessibility {
public:
    /// Connects to nothing yet. Both outlive it.
    AtspiAccessibility(DesktopWindows& windows, FileDescriptorWatcher& watcher);

    [[nodiscard]] AXUIElement createSystemWide() override;
    [[nodiscard]] AXUIElement createApplication(pid_t pid) override;
    /// Whether the accessibility bus answers and applications have been told to show their trees.
    [[nodiscard]] bool isProcessTrusted() override;
    /// In place of a prompt, tells applications to show their trees, now and at every login.
    bool isProcessTrustedWithOptions(bool prompt) override;
    [[nodiscard]] Token keepReplies() override;
    void prefetch(std::span<const AXUIElement> elements,
                  std::span<const std::string_view> attributes) override;
    [[nodiscard]] std::size_t unanswered() const override { return context_->bus.unanswered(); }
    void prefetchChildren(std::span<const AXUIElement> elements) override;

    /// Why other applications may not be read, and how to allow it, in one sentence; empty when
    /// they may.
    [[nodiscard]] std::string trustProblem();
    /// Tells applications to show their trees, or not to; whether that could be told. Those started
    /// before may not heed it.
    bool setEnabled(bool enabled);

    /// How many requests have been sent to other processes since the start.
    [[nodiscard]] std::uint64_t requests() const { return context_->bus.requests(); }
    /// How many times answers had to be waited for since the start.
    [[nodiscard]] std::uint64_t waits() const { return context_->bus.waits(); }

private:
    std::unique_ptr<atspi::Context> context_;
    Lifetime lifetime_;
};

} // namespace lumetry
