#include "platform/linux/atspi/accessibility.h"

#include "platform/linux/atspi/elements/elements.h"
#include "platform/linux/atspi/toolkit_accessibility.h"

#include <iostream>
#include <vector>

namespace lumetry {

using atspi::SessionBus;

AtspiAccessibility::AtspiAccessibility(DesktopWindows& windows, FileDescriptorWatcher& watcher)
    : context_(std::make_unique<atspi::Context>(windows, watcher)) {}

AXUIElement AtspiAccessibility::createSystemWide() {
    return AXUIElement(std::make_shared<atspi::SystemWideElement>(*context_));
}

AXUIElement AtspiAccessibility::createApplication(pid_t pid) {
    return AXUIElement(std::make_shared<atspi::ApplicationElement>(*context_, pid));
}

bool AtspiAccessibility::isProcessTrusted() {
    return trustProblem().empty();
}

bool AtspiAccessibility::isProcessTrustedWithOptions(bool prompt) {
    const bool trusted = isProcessTrusted();
    if (!prompt || trusted) {
        return trusted;
    }
    setEnabled(true);
    atspi::keepToolkitAccessibility();
    const std::string problem = trustProblem();
    if (!problem.empty()) {
        std::cerr << "lumetry: " << problem << '\n';
    }
    return problem.empty();
}

Token AtspiAccessibility::keepReplies() {
    context_->cache.beginKeeping();
    context_->processes.beginSample();
    return Token(lifetime_.guard([this] {
        context_->cache.endKeeping();
        context_->processes.endSample();
        if (!context_->cache.keeps()) {
            context_->hitTest.askAhead();
        }
    }));
}

void AtspiAccessibility::prefetch(std::span<const AXUIElement> elements,
                                  std::span<const std::string_view> attributes) {
    if (!context_->cache.keeps()) {
        return;
    }
    std::vector<atspi::Query> queries;
    for (const AXUIElement& element : elements) {
        const auto* asked = dynamic_cast<const atspi::Element*>(&element.backend());
        for (const std::string_view attribute : attributes) {
            if (asked != nullptr) {
                asked->addQueries(attribute, queries);
            }
        }
    }
    context_->cache.ask(queries, context_->deadline(std::nullopt));
}

void AtspiAccessibility::prefetchChildren(std::span<const AXUIElement> elements) {
    if (!context_->cache.keeps()) {
        return;
    }
    std::vector<atspi::ObjectReference> objects;
    for (const AXUIElement& element : elements) {
        if (const auto* object = dynamic_cast<const atspi::ObjectElement*>(&element.backend())) {
            objects.push_back(object->object());
        }
    }
    atspi::ObjectElement::askForChildren(*context_, objects);
}

std::string AtspiAccessibility::trustProblem() {
    switch (context_->bus.session().accessibility()) {
    case SessionBus::Accessibility::noSessionBus:
        return "Lumetry cannot reach the session bus that applications are on: start it inside a "
               "desktop session, or set DBUS_SESSION_BUS_ADDRESS to that session's address.";
    case SessionBus::Accessibility::noService:
        return "The accessibility service does not answer: install the package at-spi2-core and "
               "log in again.";
    case SessionBus::Accessibility::disabled:
        return "Accessibility is switched off: switch it on with \"dbus-send --session "
               "--print-reply --dest=org.a11y.Bus /org/a11y/bus "
               "org.freedesktop.DBus.Properties.Set string:org.a11y.Status string:IsEnabled "
               "variant:boolean:true\", then start the applications to be measured again.";
    case SessionBus::Accessibility::enabled:
        break;
    }
    return context_->bus.connect() ? ""
                                   : "The accessibility bus does not answer: log out and in again "
                                     "to start it anew.";
}

bool AtspiAccessibility::setEnabled(bool enabled) {
    return context_->bus.session().setAccessibilityEnabled(enabled);
}

} // namespace lumetry
