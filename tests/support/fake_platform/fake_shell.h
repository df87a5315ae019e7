#pragma once

#include "platform/hot_keys.h"
#include "platform/local_event_monitors.h"
#include "platform/own_application.h"
#include "platform/shell_platform.h"
#include "platform/status_bar.h"
#include "support/fake_platform/fake_desktop.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace lumetry {

class FakeHotKeys final : public HotKeys {
public:
    struct Registration {
        std::uint32_t keyCode;
        std::uint32_t modifiers;
        HotKeyID id;
    };

    /// Presses a key of that identifier. The handlers' answers, newest first, until noErr.
    std::vector<EventStatus> press(HotKeyID id);

    [[nodiscard]] Token installEventHandler(Handler handler) override {
        return handlers.add(std::move(handler));
    }
    [[nodiscard]] Token registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                            HotKeyID id) override {
        return registrations.add({keyCode, modifiers, id});
    }

    FakeInstallations<Handler> handlers;
    FakeInstallations<Registration> registrations;
};

class FakeLocalEventMonitors final : public LocalEventMonitors {
public:
    EventFate fire(const Event& event);

    [[nodiscard]] Token addLocalMonitorForEvents(EventMask mask, Handler handler) override {
        return monitors.add({mask, std::move(handler)});
    }

    FakeInstallations<std::pair<EventMask, Handler>> monitors;
};

class FakeOwnApplication final : public OwnApplication {
public:
    struct Process {
        std::string executable;
        std::vector<std::string> arguments;

        friend bool operator==(const Process&, const Process&) = default;
    };

    /// The user turns to the program.
    void becomeActive() const {
        observers.forEach([](const auto& observer) { observer(); });
    }

    [[nodiscard]] std::string bundlePath() override { return bundle; }
    void setActivationPolicy(ActivationPolicy value) override { policy = value; }
    void activateIgnoringOtherApps() override { ++activations; }
    [[nodiscard]] Token addDidBecomeActiveObserver(std::function<void()> handler) override {
        return observers.add(std::move(handler));
    }
    void terminate() override { ++terminations; }
    void openAddress(std::string_view address) override { addresses.emplace_back(address); }
    void startProcess(const std::string& executable,
                      const std::vector<std::string>& arguments) override {
        processes.push_back({executable, arguments});
    }

    std::string bundle = "/usr/bin";
    ActivationPolicy policy = ActivationPolicy::accessory;
    int activations = 0;
    int terminations = 0;
    std::vector<std::string> addresses;
    std::vector<Process> processes;
    FakeInstallations<std::function<void()>> observers;
};

class FakeStatusBar final : public StatusBar {
public:
    /// What became of the item.
    struct Record {
        bool alive = true;
        TemplateImage image;
        std::string toolTip;
        std::vector<MenuItem> menu;
    };

    [[nodiscard]] bool isPresent() override { return present; }
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override;

    bool present = true;
    std::vector<std::shared_ptr<Record>> made;
};

/// A fake desktop with what the program around inspect mode needs besides.
class FakeShell {
public:
    void allow(bool accessibility, bool capture) {
        desktop.accessibility.trusted = accessibility;
        desktop.windowServer.captureAllowed = capture;
    }
    void advance(double seconds) { desktop.runLoop.advance(seconds); }

    FakeDesktop desktop;
    FakeHotKeys hotKeys;
    FakeLocalEventMonitors localEventMonitors;
    FakeOwnApplication application;
    FakeStatusBar statusBar;
    ShellPlatform platform = {desktop.platform, hotKeys, localEventMonitors, application,
                              statusBar};
};

} // namespace lumetry
