#pragma once

#include "base/token.h"
#include "platform/ax_ui_element.h"

#include <sys/types.h>

#include <cstddef>
#include <span>
#include <string_view>

namespace lumetry {

/// The way into other applications' element trees.
class Accessibility {
public:
    Accessibility() = default;
    Accessibility(const Accessibility&) = delete;
    Accessibility& operator=(const Accessibility&) = delete;
    virtual ~Accessibility() = default;

    /// The root of everything on screen (AXUIElementCreateSystemWide).
    [[nodiscard]] virtual AXUIElement createSystemWide() = 0;
    /// The root of one application, running or not (AXUIElementCreateApplication).
    [[nodiscard]] virtual AXUIElement createApplication(pid_t pid) = 0;
    /// Whether this program may read other applications (AXIsProcessTrusted).
    [[nodiscard]] virtual bool isProcessTrusted() = 0;
    /// The same, and where it may not and the prompt is wanted, asks the user or does what the
    /// platform has in its place (AXIsProcessTrustedWithOptions).
    virtual bool isProcessTrustedWithOptions(bool prompt) = 0;

    /// Until the token is destroyed, what has been read once is not asked for again: every
    /// attribute keeps the reply it gave first. Within another such scope, until that one ends.
    [[nodiscard]] virtual Token keepReplies() = 0;
    /// Asks for attributes of several elements together, so that one wait serves them all; the
    /// replies are kept for the scope that is open. Of "AXAttributedStringForRange" that is the one
    /// of the first character, where a text has any. Only a hint: a desktop that
    /// cannot do it does nothing, and without an open scope nothing is asked.
    virtual void prefetch(std::span<const AXUIElement> elements,
                          std::span<const std::string_view> attributes) = 0;
    /// How many questions to other applications have gone without an answer in time so far.
    [[nodiscard]] virtual std::size_t unanswered() const = 0;
    /// The same as prefetch for the children of several elements, and for all that tells which
    /// there are: nothing is left to be asked when they are read. Of an element without much to
    /// read that is more than "AXChildren" asks.
    virtual void prefetchChildren(std::span<const AXUIElement> elements) = 0;
};

} // namespace lumetry
