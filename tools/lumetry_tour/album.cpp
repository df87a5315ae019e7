#include "album.h"

#include "pointer_picture.h"
#include "rig/screenshot.h"

#include <iomanip>
#include <iostream>
#include <sstream>
#include <utility>

namespace lumetry::desktop {

Album::Album(std::filesystem::path folder) : folder_(std::move(folder)) {
    // Those of an earlier tour would be taken for this one's.
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder_, ignored)) {
        if (entry.path().extension() == ".png") {
            std::filesystem::remove(entry.path(), ignored);
        }
    }
}

void Album::takePicture(const XConnection& server, const std::string& name,
                        const std::string& line) {
    std::ostringstream file;
    file << std::setw(2) << std::setfill('0') << ++count_ << '-' << name << ".png";
    const auto path = folder_ / file.str();
    auto picture = screenshot(server);
    drawPointer(server, picture);
    writePng(picture, path);
    std::cout << path.string() << "  " << line << std::endl;
}

} // namespace lumetry::desktop
