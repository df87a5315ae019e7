#include "support/fake_platform/fake_desktop.h"

namespace lumetry {

FakeDesktop::FakeDesktop() {
    windowServer.allScreens = {{{0, 0, 1440, screenHeight}, {0, 0, 1440, screenHeight - 30}}};
    windowServer.main = windowServer.allScreens.front();
    state.lumetryPID = ownPID;
}

void FakeDesktop::launch(pid_t pid, const std::string& name, const std::string& bundleIdentifier) {
    RunningApplication application;
    application.bundleIdentifier = bundleIdentifier;
    application.bundleLocation = "/Applications/" + name + ".app";
    application.localizedName = name;
    applications.running[pid] = application;
}

void FakeDesktop::launchElectron(pid_t pid, const std::string& name) {
    launch(pid, name, "com.example." + name);
    fileSystem.files.insert("/Applications/" + name +
                            ".app/Contents/Frameworks/Electron Framework.framework/Versions/A/"
                            "Libraries/libGLESv2.dylib");
}

void FakeDesktop::openWindow(pid_t pid, const Rect& bounds) {
    windowServer.windows->push_back({.ownerPID = pid, .alpha = 1, .layer = 0, .bounds = bounds});
}

} // namespace lumetry
