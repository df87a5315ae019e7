#include "platform/linux/kwin/screenshot_permission.h"

#include "platform/linux/system/environment.h"

#include <fstream>
#include <string_view>
#include <system_error>

namespace lumetry::kwin {
namespace {

namespace fs = std::filesystem;

/// The value of an "Exec" key: quoted, with what is special in quotes escaped.
std::string quoted(const std::string& path) {
    std::string text = "\"";
    for (const char letter : path) {
        if (std::string_view("\"`$\\").find(letter) != std::string_view::npos) {
            text += "\\\\";
        }
        if (letter == '%') {
            text += '%';
        }
        text += letter;
    }
    return text + "\"";
}

bool writeEntry(const fs::path& folder, const fs::path& program) {
    const std::string name = program.filename().string();
    std::ofstream file(folder / ("app.lumetry." + name + ".permission.desktop"));
    file << "[Desktop Entry]\nType=Application\nName=" << name
         << "\nExec=" << quoted(program.string())
         << "\nNoDisplay=true\nX-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2"
            "\nX-KDE-Wayland-Interfaces=org_kde_kwin_keystate\n";
    file.close();
    return !file.fail();
}

} // namespace

bool permitScreenshots(const fs::path& dataFolder) {
    std::error_code error;
    const fs::path own = fs::read_symlink("/proc/self/exe", error);
    const fs::path folder = dataFolder / "applications";
    fs::create_directories(folder, error);
    bool written = !own.empty() && writeEntry(folder, own);
    for (const char* const name : {"lumetry", "lumetry-measure", "lumetry-audit"}) {
        const fs::path sibling = own.parent_path() / name;
        if (sibling != own && fs::exists(sibling, error)) {
            written = writeEntry(folder, sibling) && written;
        }
    }
    return written;
}

fs::path userDataFolder() {
    return environmentText("XDG_DATA_HOME", environmentText("HOME") + "/.local/share");
}

} // namespace lumetry::kwin
