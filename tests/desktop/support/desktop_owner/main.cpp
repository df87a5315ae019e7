// Makes a desktop with programs that do not end by themselves when their X server goes, writes the
// desktop's folder to standard output, and waits to be ended.

#include "support/real_desktop/chromium.h"
#include "support/real_desktop/desktop_windows.h"
#include "support/real_desktop/private_desktop.h"

#include <unistd.h>

#include <exception>
#include <iostream>

int main() {
    using namespace lumetry::desktop;
    try {
        PrivateDesktop desktop;
        [[maybe_unused]] const auto browser = startChromiumWith(desktop, "<title>page</title>");
        auto stopped = desktop.start({"gtk3-widget-factory"});
        waitForWindow(desktop.server(), hasClass("Gtk3-widget-factory"));
        waitForWindow(desktop.server(), hasClass("Chromium"));
        stopped.stop();
        std::cout << desktop.folder().string() << std::endl;
        for (;;) {
            pause();
        }
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
